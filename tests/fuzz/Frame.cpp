#include "platform/message/Frame.h"

#include "fuzz/Target.h"

using namespace platform::message;
using fuzz::require;
using Result = FrameReader::Result;

namespace {

/// The frames of a stream that comes in pieces of that many bytes, each frame's bytes as they were; `last` is
/// what the reader says after them.
QList<QByteArray> read(QByteArrayView stream, qsizetype piece, Result* last) {
    QList<QByteArray> frames;
    FrameReader reader;
    *last = Result::Incomplete;
    while (!stream.isEmpty() && *last == Result::Incomplete) {
        const QByteArrayView part = stream.first(std::min(piece, stream.size()));
        stream = stream.sliced(part.size());
        reader.add(part);
        Frame frame;
        while ((*last = reader.next(&frame)) == Result::Complete) {
            frames << encodeFrame(frame);
            require(parseMessageNumber(toText(frame.number)) == frame.number,
                    "a number reads as it was told");
        }
        require(reader.pending() < kFrameLimit || *last != Result::Incomplete,
                "a reader holds one frame at most");
    }
    return frames;
}

}  // namespace

FUZZ_TARGET(Frame, input) {
    const int piece = 1 + (input.isEmpty() ? 0 : uchar(input.front()) % 64);
    Result whole{};
    Result inPieces{};
    input = input.sliced(std::min<qsizetype>(1, input.size()));
    const QList<QByteArray> frames = read(input, kFrameLimit, &whole);
    require(input.startsWith(frames.join()), "a frame that is read encodes to the same bytes");
    require(read(input, piece, &inPieces) == frames && inPieces == whole, "pieces give the same frames");
    require(!describe(whole).isEmpty(), "every result has words");
}
