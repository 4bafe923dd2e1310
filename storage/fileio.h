#pragma once

// One text file read as a stream of typed fields or written as comment lines and comma-separated typed
// fields. One object serves one file in one direction: the first access opens the file, for reading or for
// appending (writing never truncates), and fixes the direction until closeFile.
//
// Reading: fields are separated by "," and line ends (CR, LF or CR LF); blanks before a field are skipped; a
// field that starts with a double quote runs to the next double quote, which may include commas and line
// ends; an unquoted field loses its trailing blanks; unquoted fields that are empty or begin with ";" are
// skipped (a comment is a field, so a comment line holding a comma yields a data field after it). A quoted
// field is always data, even when it is empty: the writer quotes every text, and an empty text must read back
// as one. The reader keeps one field of look-ahead (the token): a read returns it and fetches the next, so
// endOfFile turns true as soon as the last field has been fetched, and reading past the end returns the last
// field again.
//
// Validation messages ("Not Numeric Value(Double)." and its kin, "Not Boolean Value.") go to the message sink
// under the title "error"; the failing field is not consumed. A number that does not fit the type asked for
// throws NumberOutOfRange. Written files have CR LF line ends on every platform.
//
// Hostile input: only regular files are opened (a pipe or a device would block or never end); a UTF-8
// byte-order mark at the start of the file is skipped; a field longer than kMaxFieldLength, or a read error,
// is reported and ends the file there. Writing: a text that a setting file cannot hold (a double quote or a
// line end) is refused with a message naming it, and then nothing of the file is written: the writes are kept
// until closeFile and written together, so a refused text never leaves half a report behind. A comment line
// never yields a data field: a comma in its text that is not followed by ";" gets one (see printComment).

#include "driver/Variant.h"
#include "storage/Messages.h"

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vss {

// A numeric field outside the range of the type read (Integer, Long or Double). The message names the text,
// the type and the place.
class NumberOutOfRange : public std::range_error {
public:
    NumberOutOfRange(const std::string& message, FieldPosition where)
        : std::range_error(message), where_(std::move(where)) {}
    const FieldPosition& where() const { return where_; }

private:
    FieldPosition where_;
};

// A read from a file opened for appending, or a write to one opened for reading.
class FileModeError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

class fileio {
public:
    // Bytes read from the file at a time.
    static constexpr std::size_t kReadBufferSize = 64 * 1024;
    // The longest field read; the tool's own fields are a few dozen bytes.
    static constexpr std::size_t kMaxFieldLength = 4 * 1024 * 1024;

    explicit fileio(MessageSink& sink);
    ~fileio();
    fileio(const fileio&) = delete;
    fileio& operator=(const fileio&) = delete;

    void closeFile();
    void setFileName(const std::string& name);
    double readDbl();
    std::int16_t readInt();
    std::int32_t readLng();
    std::string readStr();
    bool endOfFile() {
        // Fast path for the common case: the file is open for reading and bytes are buffered.
        if (file_ != nullptr && mode_ == Mode::Read && pos_ < len_)
            return false;
        return endOfFileSlow();
    }
    void printStr(std::string& text);
    void print2Str(std::string_view text);
    void writeStr(std::string_view text);
    void writeDbl(double value);
    void writeInt(std::int16_t value);
    void writeLng(std::int32_t value);
    void writeCrLf();
    static bool fileExists(const std::string& name);
    // Writes "; " and the text as one comment line. Every comma of the text that a ";" does not follow
    // (blanks aside) is followed by "; ", so that no part of a text from the instrument or a catalogue (a
    // hardware revision "x,%SpindleSpeed,4001") is read back as a data field.
    void printComment(std::string_view text);
    bool readFlg();
    void writeFlg(bool value);
    Variant readVariant();
    void writeVariant(const Variant& value);

    const std::string& fileName() const { return fileName_; }
    bool failed() const { return failed_; }
    // True once a read has gone past the end: every further read returns the last field again. Loops driven
    // by a count read from the file stop here.
    bool pastEnd() const { return pastEnd_; }
    // Validation messages raised so far by this object.
    std::int64_t messageCount() const { return messageCount_; }
    // Where the look-ahead field starts.
    FieldPosition tokenPosition() const;
    // The look-ahead field itself, without consuming it (empty before the file is opened).
    std::string_view token() const { return token_; }
    // True when a text cannot be written as a field (or a comment line) of a setting file and read back as
    // written: it holds a line end, or (a field) a double quote.
    static bool unwritable(std::string_view text, bool comment = false);
    // Why a text is unwritable, as the messages of the writer and of the reader say it: "the text "PZ\"8"
    // cannot be written to a setting file: it holds a double quote or a line end".
    static std::string unwritableReason(std::string_view text);
    // Refuses a text that the caller found unwritable for its own reason (`why`, a clause "it reads as ..."):
    // as for a double quote, nothing of the file is written, and the message names the text and the file.
    void refuseText(std::string_view text, std::string_view why);

private:
    enum class Mode { Read, Append };

    void openFile(Mode mode);
    void ensureOpen(Mode mode) {
        if (file_ == nullptr && !failed_)
            openFile(mode);
    }
    // Fetches the next data field into the look-ahead, skipping empty fields and comments. At the end of the
    // file the look-ahead keeps its last value and every further read returns it again.
    void nextToken() {
        if (pos_ < len_ && scanBufferedFields())
            return; // the common case: the field is in the buffered bytes
        nextTokenSlow();
    }
    void nextTokenSlow();
    bool endOfFileSlow();
    bool readable(); // opens for reading; false when the file could not be opened
    static bool isBoolean(std::string_view text);

    // Field reading.
    bool fill();
    bool atEnd() { return pos_ >= len_ && !fill(); }
    void stopReading(std::string_view why); // reports why and makes the read position the end of the file
    bool tooLong(const std::string& field);
    void readField(std::string& out);
    bool scanBufferedFields();
    void consumeSeparator();
    void readQuoted(std::string& out);
    void readUnquoted(std::string& out);

    void write(std::string_view text);
    bool refuse(std::string_view text, bool comment = false); // true, said once, when it cannot be written
    void refuseFile(const std::string& reason);
    void writeFailed();
    void raise(std::string_view text);
    template <class T>
    T readWhole(std::string_view typeName);
    NumberOutOfRange outOfRange(std::string_view typeName) const;

    MessageSink& sink_;
    std::string fileName_;
    std::FILE* file_ = nullptr;
    Mode mode_ = Mode::Read;
    // The look-ahead field: a view of the buffered bytes while they last (tokenInBuffer_), else of tokenStore_.
    std::string_view token_;
    std::string tokenStore_;
    bool tokenInBuffer_ = false;
    std::string scratch_; // the field being read, before it becomes the token
    bool failed_ = false;
    bool pastEnd_ = false;
    bool stopped_ = false;    // reading ended early: a read error or an overlong field
    bool lastQuoted_ = false; // the field read last by readField was quoted
    std::string pending_;     // written at closeFile
    std::int64_t messageCount_ = 0;

    std::vector<char> buffer_;
    std::size_t pos_ = 0;
    std::size_t len_ = 0;
    std::int64_t line_ = 1;       // of the read position
    std::int64_t field_ = 1;      // of the read position, within its line
    std::int64_t fieldLine_ = 0;  // where the field being read started
    std::int64_t fieldIndex_ = 0;
    std::int64_t tokenLine_ = 0;  // where the token started
    std::int64_t tokenField_ = 0;
};

} // namespace vss
