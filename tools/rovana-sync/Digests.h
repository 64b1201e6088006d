#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace terminal_sync {

/// Has the documents' digests worked out by OpenSSL, which the line to the office brings along and which uses
/// the processor's own instructions for them.
void useProcessorsDigests();

/// SHA-256 by the same.
QByteArray sha256(QByteArrayView content);

}  // namespace terminal_sync
