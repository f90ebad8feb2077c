#pragma once

#include <QByteArray>
#include <QFileDevice>
#include <QString>

#include <optional>

// Replaces the file at path with the bytes as a whole, or leaves whatever was there as it was:
// a crash, a full disk or an unwritable folder never leaves half a file. The new file gets the
// permissions when they are given. Answers whether the file was written.
bool TWWriteFileAtomically(const QString &path, const QByteArray &bytes,
                           std::optional<QFileDevice::Permissions> permissions = std::nullopt);
