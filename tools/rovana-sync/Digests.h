#pragma once

namespace terminal_sync {

/// Has the documents' digests worked out by OpenSSL, which the line to the office brings along and which uses
/// the processor's own instructions for them.
void useProcessorsDigests();

}  // namespace terminal_sync
