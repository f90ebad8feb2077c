# The two ways in: `make run` builds and starts Tagwright, `make test` builds and runs every test.
# Both install the Debian packages that are missing first. `make install` builds and installs
# Tagwright as a desktop application under PREFIX.

BUILD_DIR ?= build
JOBS ?= $(shell nproc)
# The preview engine refuses to start as root unless its sandbox is off.
ROOT_ENV := $(if $(filter 0,$(shell id -u)),QTWEBENGINE_DISABLE_SANDBOX=1,)

PREFIX ?= /usr/local
DATA_DIR = $(abspath $(PREFIX))/share
# A prefix that the user cannot write to (nor create) is installed into with sudo.
AS_OWNER = $(shell p='$(abspath $(PREFIX))'; while [ ! -e "$$p" ]; do p=$$(dirname "$$p"); done; \
                   [ -w "$$p" ] || echo sudo)
# The folders the desktop reads menus, file types and icons from; only there are its caches
# brought up to date, so that an install into a staging folder leaves no cache behind.
DESKTOP_DATA_DIRS = $${XDG_DATA_DIRS:-/usr/local/share:/usr/share}:$${XDG_DATA_HOME:-$$HOME/.local/share}

.PHONY: run test build deps clean install

run: build
	$(ROOT_ENV) ./$(BUILD_DIR)/tagwright $(FILES)

test: build
	cd $(BUILD_DIR) && $(ROOT_ENV) QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

build: deps
	cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD_DIR) -j $(JOBS)

# Each cache tool runs only when it is there, and none of them can fail the install.
install: build
	$(AS_OWNER) cmake --install $(BUILD_DIR) --prefix $(abspath $(PREFIX))
	@case ":$(DESKTOP_DATA_DIRS):" in *":$(DATA_DIR):"*) \
	  if command -v update-desktop-database >/dev/null; then $(AS_OWNER) update-desktop-database -q $(DATA_DIR)/applications || true; fi; \
	  if command -v update-mime-database >/dev/null; then $(AS_OWNER) update-mime-database $(DATA_DIR)/mime || true; fi; \
	  if command -v gtk-update-icon-cache >/dev/null; then $(AS_OWNER) gtk-update-icon-cache -f -t -q $(DATA_DIR)/icons/hicolor || true; fi;; \
	esac

deps:
	./scripts/install-deps.sh

clean:
	rm -rf $(BUILD_DIR)
