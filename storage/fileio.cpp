#include "storage/fileio.h"

#include "driver/FileName.h"
#include "storage/NumberText.h"

#include <bit>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>

namespace vss {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isSeparator(char c) { return c == ',' || c == '\r' || c == '\n'; }

// The characters that end an unquoted field, as a table: the scan over the field is the reader's hot loop.
struct SeparatorTable {
    bool entries[256] = {};
    constexpr SeparatorTable() {
        for (unsigned char c : {',', '\r', '\n'})
            entries[c] = true;
    }
    bool operator[](char c) const { return entries[static_cast<unsigned char>(c)]; }
};
constexpr SeparatorTable kSeparator;

// The buffer holds a sentinel line end after the buffered bytes and a word of padding after that, so that
// findFirstOf may read whole words up to the sentinel.
constexpr std::size_t kPadding = 1 + sizeof(std::uint64_t);

// The first of the bytes a, b or c at or after p, a word at a time where the byte order allows. A byte equal to
// a turns into a zero byte of word ^ (a in every byte); the lowest flagged zero byte is exact. The caller makes
// sure that one of the three (the sentinel) comes before the padding ends.
template <char a, char b, char c>
const char* findFirstOf(const char* p) {
    if constexpr (std::endian::native == std::endian::little) {
        constexpr std::uint64_t ones = 0x0101010101010101ULL;
        constexpr std::uint64_t highs = 0x8080808080808080ULL;
        const auto zeroBytes = [](std::uint64_t v) { return (v - ones) & ~v & highs; };
        for (;; p += sizeof(std::uint64_t)) {
            std::uint64_t word = 0;
            std::memcpy(&word, p, sizeof word);
            const std::uint64_t hits = zeroBytes(word ^ (ones * static_cast<unsigned char>(a))) |
                                       zeroBytes(word ^ (ones * static_cast<unsigned char>(b))) |
                                       zeroBytes(word ^ (ones * static_cast<unsigned char>(c)));
            if (hits != 0)
                return p + std::countr_zero(hits) / 8;
        }
    } else {
        while (*p != a && *p != b && *p != c)
            ++p;
        return p;
    }
}

const char* findSeparator(const char* p) { return findFirstOf<',', '\r', '\n'>(p); }

} // namespace

fileio::fileio(MessageSink& sink) : sink_(sink) {}

fileio::~fileio() { closeFile(); }

void fileio::closeFile() {
    if (file_ == nullptr)
        return;
    errno = 0;
    bool written = true;
    if (mode_ == Mode::Append && !failed_ && !pending_.empty())
        written = std::fwrite(pending_.data(), 1, pending_.size(), file_) == pending_.size();
    pending_.clear();
    const bool flushed = std::fclose(file_) == 0; // a full disk shows here, when the last bytes are written
    file_ = nullptr;
    if (!(written && flushed) && mode_ == Mode::Append && !failed_)
        writeFailed();
}

// The file as a whole could not be written: said once, and nothing more is written to it.
void fileio::writeFailed() {
    failed_ = true;
    const int error = errno != 0 ? errno : EIO;
    report(sink_, std::strerror(error), "", FieldPosition{fileName_, 0, 0, true});
}

void fileio::setFileName(const std::string& name) {
    if (name == fileName_)
        return;
    if (!fileName_.empty())
        closeFile();
    fileName_ = name;
}

void fileio::openFile(Mode mode) {
    std::error_code ec;
    const auto status = std::filesystem::status(pathFromUtf8(fileName_), ec);
    // Only regular files are read: a named pipe would block the program and a device may never end. A device
    // may take a report (the null device, a terminal), but nothing that blocks until someone reads it.
    const bool blocking = std::filesystem::is_fifo(status) || std::filesystem::is_socket(status);
    const bool special = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
                         !std::filesystem::is_directory(status) && (mode == Mode::Read || blocking);
    if (std::filesystem::is_directory(status)) {
        errno = EISDIR;
    } else if (!special) {
        errno = 0;
        file_ = fopenUtf8(fileName_, mode == Mode::Read ? "rb" : "ab");
    }
    if (file_ == nullptr) {
        failed_ = true;
        const int error = errno != 0 ? errno : ENOENT;
        FieldPosition where{fileName_, 0, 0, true};
        report(sink_, special ? fileName_ + " is not a regular file." : std::string(std::strerror(error)), "",
               where);
        return;
    }
    mode_ = mode;
    if (mode == Mode::Read) {
        buffer_.resize(kReadBufferSize + kPadding);
        pos_ = len_ = 0;
        line_ = field_ = 1;
        pastEnd_ = false;
        stopped_ = false;
        // A byte-order mark that an editor put before the first field belongs to no field.
        if (fill() && std::string_view(buffer_.data(), len_).starts_with(kByteOrderMark))
            pos_ = kByteOrderMark.size();
        nextToken();
    }
}

FieldPosition fileio::tokenPosition() const { return FieldPosition{fileName_, tokenLine_, tokenField_, false}; }

// ---- reading fields

bool fileio::fill() {
    if (pos_ < len_)
        return true;
    if (file_ == nullptr || stopped_)
        return false;
    if (tokenInBuffer_) { // the token outlives the buffered bytes it points into
        tokenStore_.assign(token_);
        token_ = tokenStore_;
        tokenInBuffer_ = false;
    }
    errno = 0;
    len_ = std::fread(buffer_.data(), 1, kReadBufferSize, file_);
    buffer_[len_] = '\n'; // sentinel: ends every scan at the end of the buffered bytes
    pos_ = 0;
    if (len_ < kReadBufferSize && std::ferror(file_) != 0) {
        // What was read stays; nothing after it is taken for data, and the user learns that the file was not
        // read to its end rather than meeting its last field as if it were.
        const int error = errno != 0 ? errno : EIO;
        stopReading("The file could not be read beyond line " + std::to_string(line_) + ": " +
                    std::strerror(error) + ". The rest of it is not read.");
    }
    return len_ > 0;
}

// Nothing more is read from the file after the bytes already buffered.
void fileio::stopReading(std::string_view why) {
    stopped_ = true;
    report(sink_, why, kErrorTitle, FieldPosition{fileName_, line_, field_, false});
}

bool fileio::tooLong(const std::string& field) {
    if (field.size() <= kMaxFieldLength)
        return false;
    stopReading("The field at line " + std::to_string(fieldLine_) + ", field " + std::to_string(fieldIndex_) +
                " of " + fileName_ + " is longer than " + std::to_string(kMaxFieldLength / (1024 * 1024)) +
                " MB: the file is read no further.");
    pos_ = len_;         // and the buffered rest of it is dropped
    lastQuoted_ = false; // nothing of the field becomes a token
    return true;
}

void fileio::consumeSeparator() {
    if (atEnd())
        return;
    const char c = buffer_[pos_++];
    if (c == ',') {
        ++field_;
        return;
    }
    if (c == '\r' && !atEnd() && buffer_[pos_] == '\n')
        ++pos_;
    ++line_;
    field_ = 1;
}

void fileio::readUnquoted(std::string& out) {
    while (!atEnd()) {
        const char* begin = buffer_.data() + pos_;
        const char* end = buffer_.data() + len_;
        const char* p = begin;
        while (p < end && !kSeparator[*p])
            ++p;
        out.append(begin, p);
        pos_ += static_cast<std::size_t>(p - begin);
        if (tooLong(out)) {
            out.clear();
            return;
        }
        if (p < end)
            break;
    }
    while (!out.empty() && isBlank(out.back()))
        out.pop_back();
}

void fileio::readQuoted(std::string& out) {
    bool closed = false;
    char previous = '\0'; // the byte before the scan, which may have been in the previous buffer
    while (!closed && !atEnd()) {
        const char* begin = buffer_.data() + pos_;
        const char* end = buffer_.data() + len_;
        const auto* quote = static_cast<const char*>(std::memchr(begin, '"', len_ - pos_));
        const char* stop = quote != nullptr ? quote : end;
        for (const char* p = begin; p < stop; previous = *p++)
            if (*p == '\r' || (*p == '\n' && previous != '\r')) // a CR LF counts once, at its CR
                ++line_;
        out.append(begin, stop);
        pos_ += static_cast<std::size_t>(stop - begin);
        if (tooLong(out)) {
            out.clear();
            return;
        }
        if (quote != nullptr) {
            ++pos_;
            closed = true;
        }
    }
    // Whatever follows the closing quote up to the separator is dropped.
    while (!atEnd() && !isSeparator(buffer_[pos_]))
        ++pos_;
}

void fileio::readField(std::string& out) {
    out.clear();
    while (!atEnd() && isBlank(buffer_[pos_]))
        ++pos_;
    fieldLine_ = line_;
    fieldIndex_ = field_;
    lastQuoted_ = false;
    if (atEnd())
        return;
    lastQuoted_ = buffer_[pos_] == '"';
    if (lastQuoted_) {
        ++pos_;
        readQuoted(out);
    } else {
        readUnquoted(out);
    }
    consumeSeparator();
}

void fileio::nextTokenSlow() {
    for (;;) {
        if (atEnd()) {
            pastEnd_ = true;
            return;
        }
        if (scanBufferedFields())
            return;
        if (pos_ == len_)
            continue; // the buffered bytes ended on a field boundary
        readField(scratch_); // a field that runs past the buffered bytes
        if (lastQuoted_ || (!scratch_.empty() && scratch_.front() != ';')) {
            tokenStore_.swap(scratch_);
            token_ = tokenStore_;
            tokenInBuffer_ = false;
            tokenLine_ = fieldLine_;
            tokenField_ = fieldIndex_;
            return;
        }
    }
}

// The common case, on the buffered bytes alone: skips empty fields and comments and takes the next data field
// into the token. Returns false, with the read position at the start of a field, when that field's separator
// is not yet in the buffer. Position bookkeeping stays in locals until the scan stops.
bool fileio::scanBufferedFields() {
    const char* const base = buffer_.data();
    const char* const end = base + len_;
    const char* p = base + pos_;
    std::int64_t line = line_;
    std::int64_t field = field_;
    bool found = false;
    for (;;) {
        const char* start = p;
        while (isBlank(*start)) // the sentinel after the buffered bytes stops every scan
            ++start;
        if (start == end)
            break;
        const char* first = start; // the field's text, without quotes
        const char* last = nullptr;
        const char* stop = nullptr; // the separator
        std::int64_t lineEnds = 0;
        const bool quoted = *start == '"';
        if (quoted) {
            first = start + 1;
            const char* quote = findFirstOf<'"', '\r', '\n'>(first);
            for (; *quote != '"' && quote != end; quote = findFirstOf<'"', '\r', '\n'>(quote + 1))
                if (*quote == '\n' || quote[1] != '\n') // a CR LF counts once, at its LF
                    ++lineEnds;
            if (quote == end)
                break;
            last = quote;
            stop = findSeparator(quote + 1);
        } else if (kSeparator[*start]) {
            stop = last = start; // an empty field
        } else {
            stop = findSeparator(start);
            last = stop;
            while (isBlank(last[-1])) // stops at the field's first byte, which is not blank
                --last;
        }
        // A CR as the last buffered byte may be the first half of a CR LF: the slow path reads on.
        if (stop == end || (*stop == '\r' && stop + 1 == end))
            break;
        const std::int64_t fieldLine = line;
        const std::int64_t fieldIndex = field;
        line += lineEnds;
        if (*stop == ',') {
            p = stop + 1;
            ++field;
        } else {
            p = stop + (*stop == '\r' && stop[1] == '\n' ? 2 : 1);
            ++line;
            field = 1;
        }
        if (quoted || (last > first && *first != ';')) {
            token_ = std::string_view(first, static_cast<std::size_t>(last - first));
            tokenInBuffer_ = true;
            tokenLine_ = fieldLine;
            tokenField_ = fieldIndex;
            found = true;
            break;
        }
    }
    pos_ = static_cast<std::size_t>(p - base);
    line_ = line;
    field_ = field;
    return found;
}

// ---- typed reads

bool fileio::readable() {
    ensureOpen(Mode::Read);
    if (failed_)
        return false;
    if (mode_ != Mode::Read)
        throw FileModeError("Bad file mode: " + fileName_ + " is open for writing");
    return true;
}

void fileio::raise(std::string_view text) {
    ++messageCount_;
    report(sink_, text, kErrorTitle, tokenPosition());
}

NumberOutOfRange fileio::outOfRange(std::string_view typeName) const {
    const FieldPosition where = tokenPosition();
    return NumberOutOfRange("Overflow: \"" + printable(token_, kQuoteLimit) + "\" does not fit " +
                                std::string(typeName) + " (" + fileName_ + ", line " +
                                std::to_string(where.line) + ", field " + std::to_string(where.field) + ")",
                            where);
}

std::string fileio::readStr() {
    if (!readable())
        return {};
    std::string result(token_);
    if (!pastEnd_)
        nextToken(); // at the end nothing follows and the last field stays in the look-ahead
    return result;
}

template <class T>
T fileio::readWhole(std::string_view typeName) {
    if (!readable())
        return 0;
    const auto number = numbertext::parseNumber(token_);
    if (!number) {
        raise("Not Numeric Value(" + std::string(typeName) + ").");
        return 0;
    }
    const double whole = numbertext::roundHalfEven(*number);
    if (!(whole >= std::numeric_limits<T>::min() && whole <= std::numeric_limits<T>::max()))
        throw outOfRange(typeName);
    nextToken();
    return static_cast<T>(whole);
}

std::int16_t fileio::readInt() { return readWhole<std::int16_t>("Integer"); }

std::int32_t fileio::readLng() { return readWhole<std::int32_t>("Long"); }

double fileio::readDbl() {
    if (!readable())
        return 0.0;
    const auto number = numbertext::parseNumber(token_);
    if (!number) {
        raise("Not Numeric Value(Double).");
        return 0.0;
    }
    if (!std::isfinite(*number))
        throw outOfRange("Double");
    nextToken();
    return *number;
}

bool fileio::isBoolean(std::string_view text) { return numbertext::parseBoolean(text).has_value(); }

bool fileio::readFlg() {
    if (!readable())
        return false;
    if (!isBoolean(token_)) {
        raise("Not Boolean Value.");
        return false;
    }
    const bool value = *numbertext::parseBoolean(token_);
    nextToken();
    return value;
}

bool fileio::endOfFileSlow() {
    if (!readable())
        return true;
    return atEnd();
}

Variant fileio::readVariant() {
    const std::string tag = readStr();
    if (tag == "(Integer)")
        return Variant(readInt());
    if (tag == "(Long)")
        return Variant(readLng());
    if (tag == "(Double)")
        return Variant(readDbl());
    if (tag == "(Boolean)")
        return Variant(readFlg());
    return Variant();
}

// ---- writing

void fileio::write(std::string_view text) {
    ensureOpen(Mode::Append);
    if (failed_)
        return;
    if (mode_ != Mode::Append)
        throw FileModeError("Bad file mode: " + fileName_ + " is open for reading");
    pending_.append(text);
}

bool fileio::unwritable(std::string_view text, bool comment) {
    // A double quote in a comment line stays in its comment field: printComment lets no field of the line
    // start with one.
    return text.find_first_of(comment ? "\r\n" : "\"\r\n") != std::string_view::npos;
}

namespace {
std::string unwritableText(std::string_view text, std::string_view why) {
    return "the text " + inQuotes(text) + " cannot be written to a setting file: " + std::string(why);
}
} // namespace

std::string fileio::unwritableReason(std::string_view text) {
    return unwritableText(text, "it holds a double quote or a line end");
}

// A text that would not read back as written is refused, and with it the whole file: a report missing one
// value would import as if it were complete.
bool fileio::refuse(std::string_view text, bool comment) {
    if (!unwritable(text, comment) || (file_ != nullptr && mode_ == Mode::Read))
        return false;
    refuseFile(unwritableReason(text));
    return true;
}

void fileio::refuseText(std::string_view text, std::string_view why) {
    if (file_ == nullptr || mode_ == Mode::Append)
        refuseFile(unwritableText(text, why));
}

void fileio::refuseFile(const std::string& reason) {
    if (failed_)
        return; // said once
    failed_ = true;
    pending_.clear();
    report(sink_, capitalized(reason) + ". Nothing was written to " + fileName_ + ".", kErrorTitle,
           FieldPosition{fileName_, 0, 0, true});
}

void fileio::printStr(std::string& text) {
    text += ",";
    if (!refuse(text))
        write(text + "\r\n");
}

void fileio::print2Str(std::string_view text) {
    if (refuse(text))
        return;
    write(text);
    write("\r\n");
}

void fileio::writeStr(std::string_view text) {
    if (refuse(text))
        return;
    std::string field;
    field.reserve(text.size() + 3);
    field += '"';
    field += text;
    field += "\",";
    write(field);
}

void fileio::writeDbl(double value) { write(numbertext::formatDouble(value) + ","); }

void fileio::writeInt(std::int16_t value) { write(std::to_string(value) + ","); }

void fileio::writeLng(std::int32_t value) { write(std::to_string(value) + ","); }

void fileio::writeCrLf() { write("\r\n"); }

bool fileio::fileExists(const std::string& name) {
    std::error_code ec;
    const std::filesystem::path path = pathFromUtf8(name);
    return !name.empty() && std::filesystem::exists(path, ec) && !std::filesystem::is_directory(path, ec);
}

void fileio::printComment(std::string_view text) {
    if (refuse(text, true))
        return;
    std::string line = "; ";
    line.reserve(text.size() + 8);
    for (std::size_t i = 0; i < text.size(); ++i) {
        line += text[i];
        if (text[i] != ',')
            continue;
        // The field after the comma would be data unless it is empty or a comment itself.
        const std::size_t next = text.find_first_not_of(" \t", i + 1);
        if (next != std::string_view::npos && text[next] != ',' && text[next] != ';')
            line += next == i + 1 ? "; " : ";";
    }
    line += "\r\n";
    write(line);
}

void fileio::writeFlg(bool value) { write(value ? "True," : "False,"); }

void fileio::writeVariant(const Variant& value) {
    switch (value.type()) {
    case Variant::Type::Int16:
        writeStr("(Integer)");
        writeInt(value.int16());
        break;
    case Variant::Type::Int32:
        writeStr("(Long)");
        writeLng(value.int32());
        break;
    case Variant::Type::Double:
        writeStr("(Double)");
        writeDbl(value.dbl());
        break;
    case Variant::Type::Bool:
        writeStr("(Boolean)");
        writeFlg(value.boolean());
        break;
    default:
        break; // other types write nothing
    }
}

} // namespace vss
