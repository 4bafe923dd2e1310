// The field reader on arbitrary bytes: every typed read, in an order the input chooses.

#include "fuzz/storage/FuzzInput.h"
#include "storage/fileio.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t selector = size > 0 ? data[0] : 0;
    vss::fuzz::CountingSink sink;
    vss::fileio io(sink);
    io.setFileName(vss::fuzz::writeInput(data, size));
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
