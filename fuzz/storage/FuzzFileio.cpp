// The field reader on arbitrary bytes: every typed read, in an order the input chooses, at the start of the
// file or across the end of the first read buffer.

#include "fuzz/storage/FuzzInput.h"
#include "storage/fileio.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t selector = size > 0 ? data[0] : 0;
    // An input whose first byte has its high bit set starts just before the end of the reader's first buffer
    // (the second byte says how far before), after one comment line, so that its fields straddle the refill.
    std::string prefix;
    if (size >= 2 && (selector & 0x80) != 0) {
        prefix.assign(vss::fileio::kReadBufferSize - 2 - data[1] % 64, ';');
        prefix += '\n';
    }
    const vss::fuzz::InputFile input(data, size, prefix);
    vss::fuzz::CountingSink sink;
    vss::fileio io(sink);
    io.setFileName(input.path());
    // Bounded: at most one read per byte and a few past the end (reads there repeat the last field).
    for (std::size_t i = 0; i < size + 4; ++i) {
        try {
            switch ((selector + i) % 7) {
            case 0:
                io.readStr();
                break;
            case 1:
                io.readDbl();
                break;
            case 2:
                io.readInt();
                break;
            case 3:
                io.readLng();
                break;
            case 4:
                io.readFlg();
                break;
            case 5:
                io.readVariant();
                break;
            default:
                io.endOfFile();
                break;
            }
        } catch (const vss::NumberOutOfRange&) {
            io.readStr(); // step over the field, as a caller that reports the error and goes on would
        }
    }
    return 0;
}
