# The two ways in: `make run` builds and starts Tagwright, `make test` builds and runs every test.
# Both install the Debian packages that are missing first.

BUILD_DIR ?= build
JOBS ?= $(shell nproc)
# The preview engine refuses to start as root unless its sandbox is off.
ROOT_ENV := $(if $(filter 0,$(shell id -u)),QTWEBENGINE_DISABLE_SANDBOX=1,)

.PHONY: run test build deps clean

run: build
	$(ROOT_ENV) ./$(BUILD_DIR)/tagwright $(FILES)

test: build
	cd $(BUILD_DIR) && $(ROOT_ENV) QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

build: deps
	cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD_DIR) -j $(JOBS)

deps:
	./scripts/install-deps.sh

clean:
	rm -rf $(BUILD_DIR)
