#include "storage/NumberText.h"
#include "storage/fileio.h"

#include "tests/storage/StorageTestSupport.h"

#include <cmath>
#include <random>

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace vss {
namespace {

using test::readBytes;
using test::RecordingSink;
using test::ScratchDir;

std::vector<std::string> readAllStrings(fileio& io, int count) {
    std::vector<std::string> out;
    for (int i = 0; i < count; ++i)
        out.push_back(io.readStr());
    return out;
}

TEST(NumberText, DoublesAreWrittenPlainWithUpTo15DigitsAndEFormOnlyWhenVeryLong) {
    const std::pair<double, const char*> cases[] = {
        {2.5, "2.5"},         {100, "100"},       {0.0125, "0.0125"},         {-3, "-3"},
        {0, "0"},             {-0.0, "0"},        {9.91e37, "9.91E+37"},      {1e-12, "1E-12"},
        {0.1 + 0.2, "0.3"},   {2.5e-7, "0.00000025"}, {1e14, "100000000000000"}, {1e15, "1E+15"},
        {-1.25e-20, "-1.25E-20"}, {123456789012345678.0, "1.23456789012346E+17"},
        {1.0 / 3.0, "0.333333333333333"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(numbertext::formatDouble(value), text) << value;
}

TEST(NumberText, NumericSyntaxAcceptsSignsPointsExponentsAndBlanksOnly) {
    for (const char* yes : {"1", "-1", "+1", "1.", ".5", "1.5e3", "1E-3", " 7 ", "\t-0.25\t", "9.91E+37"})
        EXPECT_TRUE(numbertext::parseNumber(yes)) << yes;
    for (const char* no : {"", " ", ".", "-", "e3", "1e", "1e+", "1,5", "0x10", "inf", "nan", "1 2", "12abc", "--1"})
        EXPECT_FALSE(numbertext::parseNumber(no)) << no;
    EXPECT_EQ(*numbertext::parseNumber("1e400"), HUGE_VAL);
    EXPECT_EQ(*numbertext::parseNumber("-1e400"), -HUGE_VAL);
    EXPECT_EQ(*numbertext::parseNumber("1e-400"), 0.0);
    EXPECT_EQ(*numbertext::parseNumber("0.000001e-399"), 0.0);
}

TEST(NumberText, WrittenDoublesReadBackAsTheValueRoundedTo15Digits) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-40, 40);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::ldexp(mantissa(random), exponent(random) * 3);
        const auto back = numbertext::parseNumber(numbertext::formatDouble(value));
        ASSERT_TRUE(back);
        ASSERT_EQ(*back, numbertext::roundTo15Digits(value)) << numbertext::formatDouble(value);
    }
    // Values with no more than 15 digits come back exactly.
    for (double exact : {0.0125, 2.5e-7, 0.02, 7200.0, 9.91e37, 1e-9, 0.0254})
        EXPECT_EQ(*numbertext::parseNumber(numbertext::formatDouble(exact)), exact);
}

TEST(Fileio, FieldSyntaxQuotesBlanksCommentsAndEveryKindOfLineEnd) {
    ScratchDir dir;
    const std::string bytes = "  alpha  ,\"b,c\"tail,,\r\n"  // blanks trimmed, quoted comma, text after quote dropped
                              "; comment, stray\n"           // a comment field, then a data field
                              "\"multi\r\nline\"\r"          // quoted line end; CR alone ends a line
                              ";only comment\r\n"
                              "  \"  spaced  \"  ,last";
    RecordingSink sink;
    fileio reader(sink);
    reader.setFileName(dir.write("f.csv", bytes));
    EXPECT_EQ(readAllStrings(reader, 5),
              (std::vector<std::string>{"alpha", "b,c", "stray", "multi\r\nline", "  spaced  "}));
    EXPECT_TRUE(reader.endOfFile()); // "last" is already fetched
    EXPECT_EQ(reader.readStr(), "last");
    EXPECT_TRUE(sink.messages.empty());
}

TEST(Fileio, AQuotedFieldIsDataEvenWhenEmptyOrStartingWithASemicolon) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.write("f.csv", "\"\",\r\n; comment,\"; kept\",, ,\"\"\r\n%Next\r\n"));
    EXPECT_EQ(readAllStrings(io, 4), (std::vector<std::string>{"", "; kept", "", "%Next"}));
    EXPECT_TRUE(sink.messages.empty());
}

TEST(Fileio, EndOfFileTurnsTrueOneFieldEarlyAndReadsPastTheEndRepeatTheLastField) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.write("f.csv", "%SpinstandType\r\n3\r\n"));
    EXPECT_FALSE(io.endOfFile());
    EXPECT_EQ(io.readStr(), "%SpinstandType");
    EXPECT_TRUE(io.endOfFile()); // "3" is fetched but not yet read
    EXPECT_FALSE(io.pastEnd());
    EXPECT_EQ(io.readInt(), 3);
    EXPECT_TRUE(io.pastEnd());
    EXPECT_EQ(io.readInt(), 3);
    EXPECT_EQ(io.readStr(), "3");

    // A row written by the writer ends with ",": the empty field before the line end does not replace the token.
    fileio written(sink);
    written.setFileName(dir.write("g.csv", "\"Load\",5400,\r\n"));
    EXPECT_EQ(written.readStr(), "Load");
    EXPECT_EQ(written.readLng(), 5400);
    EXPECT_EQ(written.readLng(), 5400);
    EXPECT_TRUE(written.endOfFile());
    EXPECT_TRUE(sink.messages.empty());
}

TEST(Fileio, OnlyCommentsAndEmptyFieldsLeaveTheTokenEmpty) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.write("f.csv", "; one\r\n,,\r\n; two,; three\r\n"));
    EXPECT_TRUE(io.endOfFile());
    EXPECT_EQ(io.readStr(), "");
    EXPECT_EQ(io.readDbl(), 0.0);
    EXPECT_EQ(sink.texts(), std::vector<std::string>{"Not Numeric Value(Double)."});
}

TEST(Fileio, ABadFieldIsNotConsumedAndEachReadThatMeetsItReportsWhereItIs) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    const std::string name = dir.write("f.csv", "1,\r\n2,x1,3\r\nmaybe,-1\r\n");
    io.setFileName(name);
    EXPECT_EQ(io.readLng(), 1);
    EXPECT_EQ(io.readDbl(), 2.0);
    EXPECT_EQ(io.readDbl(), 0.0);
    EXPECT_EQ(io.readInt(), 0);
    EXPECT_EQ(io.readLng(), 0);
    ASSERT_EQ(sink.texts(), (std::vector<std::string>{"Not Numeric Value(Double).", "Not Numeric Value(Integer).",
                                                     "Not Numeric Value(Long)."}));
    for (const auto& m : sink.messages) {
        EXPECT_EQ(m.title, "error");
        EXPECT_EQ(m.where.fileName, name);
        EXPECT_EQ(m.where.line, 2);
        EXPECT_EQ(m.where.field, 2);
    }
    EXPECT_EQ(io.readStr(), "x1");
    EXPECT_EQ(io.readInt(), 3);
    EXPECT_FALSE(io.readFlg());
    EXPECT_EQ(sink.messages.back().text, "Not Boolean Value.");
    EXPECT_EQ(sink.messages.back().where.line, 3);
    EXPECT_EQ(io.messageCount(), 4);
    EXPECT_EQ(io.readStr(), "maybe");
    EXPECT_TRUE(io.readFlg()); // -1
}

TEST(Fileio, WholeNumbersRoundHalvesToEvenAndThrowWhenOutOfRange) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.write("f.csv", "2.5,3.5,-2.5,1e3,-32768,32767.5,2147483647,2147483648,1e400\r\n"));
    EXPECT_EQ(io.readInt(), 2);
    EXPECT_EQ(io.readInt(), 4);
    EXPECT_EQ(io.readLng(), -2);
    EXPECT_EQ(io.readInt(), 1000);
    EXPECT_EQ(io.readInt(), -32768);
    EXPECT_THROW(io.readInt(), NumberOutOfRange); // rounds to 32768
    EXPECT_EQ(io.readLng(), 32768);               // the field was not consumed by the failing read
    EXPECT_EQ(io.readLng(), 2147483647);
    try {
        io.readLng();
        FAIL() << "no NumberOutOfRange";
    } catch (const NumberOutOfRange& e) {
        EXPECT_EQ(e.where().field, 8);
        EXPECT_NE(std::string(e.what()).find("2147483648"), std::string::npos);
    }
    EXPECT_EQ(io.readDbl(), 2147483648.0);
    EXPECT_THROW(io.readDbl(), NumberOutOfRange);
    EXPECT_TRUE(sink.messages.empty());
}

TEST(Fileio, AnOverflowMessageQuotesOnlyTheStartOfAHugeField) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.write("f.csv", std::string(200000, '9') + ",\r\n"));
    try {
        io.readLng();
        FAIL() << "no NumberOutOfRange";
    } catch (const NumberOutOfRange& e) {
        EXPECT_LT(std::string(e.what()).size(), 300u);
        EXPECT_NE(std::string(e.what()).find("9999...\" does not fit Long"), std::string::npos) << e.what();
    }
}

TEST(Fileio, AFieldLongerThanTheLimitEndsTheFileWithAMessage) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    for (const char* open : {"", "\""}) {
        io.setFileName(dir.write(std::string("f") + (*open ? "q" : "u") + ".csv",
                                 "7,\r\n" + std::string(open) +
                                     std::string(fileio::kMaxFieldLength + 10, 'z') + ",8\r\n"));
        EXPECT_EQ(io.readLng(), 7);
        EXPECT_TRUE(io.endOfFile());
        EXPECT_EQ(io.readStr(), "7"); // past the end: the last field read, not a piece of the long one
        io.closeFile();
    }
    ASSERT_EQ(sink.messages.size(), 2u);
    EXPECT_NE(sink.messages[0].text.find("line 2, field 1"), std::string::npos) << sink.messages[0].text;
    EXPECT_NE(sink.messages[0].text.find("longer than 4 MB"), std::string::npos);
}

#ifndef _WIN32
TEST(Fileio, WhatIsNotARegularFileIsRefusedInsteadOfBlocking) {
    ScratchDir dir;
    RecordingSink sink;
    const std::string pipe = dir.path("pipe.csv");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fileio reader(sink);
    reader.setFileName(pipe);
    EXPECT_TRUE(reader.endOfFile());
    fileio writer(sink);
    writer.setFileName(pipe);
    writer.writeStr("x");
    writer.closeFile();
    ASSERT_EQ(sink.messages.size(), 2u);
    EXPECT_EQ(sink.messages[0].text, pipe + " is not a regular file.");
    EXPECT_TRUE(sink.messages[1].where.fileFailed);
}
#endif

TEST(Fileio, ATextThatWouldNotReadBackIsRefusedAndNothingOfTheFileIsWritten) {
    ScratchDir dir;
    for (const std::string bad : {"PZ\"7, \"8", "line\r\nforged", "two\nlines"}) {
        for (const bool comment : {false, true}) {
            if (comment && bad.find('\n') == std::string::npos)
                continue; // a comment line holds double quotes: none of its fields starts with one
            RecordingSink sink;
            const std::string name = dir.write("f.csv", "kept\r\n");
            fileio io(sink);
            io.setFileName(name);
            io.printComment("header");
            io.writeLng(1);
            if (comment)
                io.printComment(bad);
            else
                io.writeStr(bad);
            io.writeLng(2);
            io.closeFile();
            EXPECT_EQ(readBytes(name), "kept\r\n");
            ASSERT_EQ(sink.messages.size(), 1u);
            EXPECT_NE(sink.messages[0].text.find("\"" + printable(bad) + "\""), std::string::npos)
                << sink.messages[0].text;
        }
    }
}

// No comment line, whatever text it holds, yields a data field; the tool's own captions are written as they
// are.
TEST(Fileio, ACommentLineReadsBackAsNoDataWhateverItsText) {
    ScratchDir dir;
    RecordingSink sink;
    const std::string name = dir.path("f.csv");
    {
        fileio io(sink);
        io.setFileName(name);
        for (const char* text : {"Hardware : x,%SpindleSpeed,4001", "a,\"%HeadFace\",b", "a, \t%DiskSize",
                                 "a,,b,", "n,; Radius,; Skew,; RPM", ",; Stage2Spindle,;Offset"})
            io.printComment(text);
    }
    const std::string written = readBytes(name);
    EXPECT_NE(written.find("; Hardware : x,; %SpindleSpeed,; 4001\r\n"), std::string::npos) << written;
    EXPECT_NE(written.find("; n,; Radius,; Skew,; RPM\r\n; ,; Stage2Spindle,;Offset\r\n"), std::string::npos);
    fileio io(sink);
    io.setFileName(name);
    EXPECT_TRUE(io.endOfFile());
    EXPECT_EQ(io.readStr(), "") << "no field is data";
    EXPECT_TRUE(sink.messages.empty());
}

TEST(Fileio, AByteOrderMarkAtTheStartIsSkippedAndTheFirstFieldIsReadAsWritten) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.write("f.csv", std::string(kByteOrderMark) + "%SpindleSpeed,\xEF\xBB\xBFx\r\n"));
    ASSERT_FALSE(io.endOfFile());
    EXPECT_EQ(io.tokenPosition().line * 10 + io.tokenPosition().field, 11);
    EXPECT_EQ(io.readStr(), "%SpindleSpeed");
    EXPECT_EQ(io.readStr(), "\xEF\xBB\xBFx") << "only at the start of the file";
    fileio bare(sink);
    bare.setFileName(dir.write("g.csv", std::string(kByteOrderMark)));
    EXPECT_TRUE(bare.endOfFile());
    EXPECT_EQ(bare.readStr(), "");
    EXPECT_TRUE(sink.messages.empty());
}

TEST(ShownText, EscapesWhatCouldForgeALineMoveTheCursorOrReorderTheTextAndCutsLongTexts) {
    const std::string forged = "a\r\nb\t\x1b[2J\"q\"\\\x7f";
    EXPECT_EQ(printable(forged), "a\\r\\nb\\t\\x1B[2J\\\"q\\\"\\\\\\x7F");
    EXPECT_EQ(shownText(forged + "\r\n"), "a\\r\\nb\\t\\x1B[2J\"q\"\\\\x7F")
        << "quotes stay, the end is trimmed";
    // C1 controls, line and paragraph separators, direction overrides and bytes that are not UTF-8.
    EXPECT_EQ(shownText("\xC2\x9B"
                        "2J \xE2\x80\xA8 \xE2\x80\xAE \x9B \xC3"),
              "\\u009B2J \\u2028 \\u202E \\x9B \\xC3");
    EXPECT_EQ(shownText("Größe 5 µm, 温度"), "Größe 5 µm, 温度");
    EXPECT_EQ(shownText(shownText(forged)), shownText(forged));
    EXPECT_EQ(printable("Serial 7"), "Serial 7");
    EXPECT_EQ(printable("abcdef", 3), "abc...");
    EXPECT_EQ(printable("äöüß", 2), "äö...") << "characters, not bytes";
    EXPECT_EQ(inQuotes(std::string(3000000, 'x')), "\"" + std::string(kQuoteLimit, 'x') + "...\"");
    EXPECT_EQ(cutPrintable("\"" + printable("\x1b\x1b\"ä" + std::string(200, 'y')) + "\"", 4),
              "\"\\x1B\\x1B\\\"ä...\"");
    EXPECT_EQ(cutPrintable("(Long) 5007"), "(Long) 5007");
}

TEST(Fileio, BooleansReadAsWordsInAnyCaseOrAsNumbers) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.write("f.csv", "True,FALSE,tRuE,0,-1,2.5,\"False\"\r\n"));
    for (bool expected : {true, false, true, false, true, true, false})
        EXPECT_EQ(io.readFlg(), expected);
    EXPECT_TRUE(sink.messages.empty());
}

TEST(Fileio, WritesAppendCrLfRowsAndTypedValuesReadBack) {
    ScratchDir dir;
    RecordingSink sink;
    const std::string name = dir.write("f.csv", "old text\r\n");
    {
        fileio io(sink);
        io.setFileName(name);
        io.writeStr("Load");
        io.writeDbl(25.5);
        io.writeDbl(-3);
        io.writeLng(5400);
        io.writeCrLf();
        io.printComment("n,; Radius");
        io.print2Str("%Bare");
        for (const Variant& v : {Variant(std::int16_t{-7}), Variant(std::int32_t{70000}), Variant(0.0125),
                                 Variant(true), Variant(false), Variant("text"), Variant(), Variant::null()})
            io.writeVariant(v);
        io.writeFlg(true);
        io.writeCrLf();
    }
    EXPECT_EQ(readBytes(name), "old text\r\n"
                               "\"Load\",25.5,-3,5400,\r\n"
                               "; n,; Radius\r\n"
                               "%Bare\r\n"
                               "\"(Integer)\",-7,\"(Long)\",70000,\"(Double)\",0.0125,\"(Boolean)\",True,"
                               "\"(Boolean)\",False,True,\r\n");
    fileio io(sink);
    io.setFileName(name);
    EXPECT_EQ(readAllStrings(io, 6), (std::vector<std::string>{"old text", "Load", "25.5", "-3", "5400", "%Bare"}));
    EXPECT_EQ(io.readVariant(), Variant(std::int16_t{-7}));
    EXPECT_EQ(io.readVariant(), Variant(std::int32_t{70000}));
    EXPECT_EQ(io.readVariant(), Variant(0.0125));
    EXPECT_EQ(io.readVariant(), Variant(true));
    EXPECT_EQ(io.readVariant(), Variant(false));
    // An unknown tag gives no value and consumes only the tag.
    EXPECT_TRUE(io.readVariant().isEmpty());
    EXPECT_TRUE(io.endOfFile());
    EXPECT_TRUE(sink.messages.empty());
}

TEST(Fileio, AFileThatCannotBeOpenedReportsOnceAndStaysUnusable) {
    ScratchDir dir;
    RecordingSink sink;
    fileio io(sink);
    io.setFileName(dir.path("missing.csv"));
    EXPECT_TRUE(io.endOfFile());
    EXPECT_EQ(io.readStr(), "");
    EXPECT_EQ(io.readDbl(), 0.0);
    EXPECT_FALSE(io.readFlg());
    EXPECT_TRUE(io.readVariant().isEmpty());
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].title, "");
    EXPECT_TRUE(sink.messages[0].where.fileFailed);
    EXPECT_FALSE(sink.messages[0].text.empty());

    fileio toDirectory(sink);
    toDirectory.setFileName(dir.path(""));
    toDirectory.writeStr("x");
    toDirectory.writeCrLf();
    EXPECT_TRUE(toDirectory.failed());
    EXPECT_EQ(sink.messages.size(), 2u);
}

TEST(Fileio, TheFirstAccessFixesTheDirectionUntilClosed) {
    ScratchDir dir;
    RecordingSink sink;
    const std::string name = dir.write("f.csv", "a,b\r\n");
    fileio io(sink);
    io.setFileName(name);
    EXPECT_EQ(io.readStr(), "a");
    EXPECT_THROW(io.writeStr("x"), FileModeError);
    io.closeFile();
    io.writeStr("c");
    EXPECT_THROW(io.readStr(), FileModeError);
    io.closeFile();
    EXPECT_EQ(io.readStr(), "a"); // reopened from the start
    EXPECT_EQ(readBytes(name), "a,b\r\n\"c\",");
}

TEST(Fileio, HugeFieldsAndUnterminatedQuotesAreReadWhole) {
    ScratchDir dir;
    RecordingSink sink;
    const std::string huge(3 * 1024 * 1024 + 17, 'x');
    fileio io(sink);
    io.setFileName(dir.write("f.csv", huge + ",\"never closed, " + huge));
    EXPECT_EQ(io.readStr(), huge);
    EXPECT_EQ(io.readStr(), "never closed, " + huge);
    EXPECT_TRUE(io.endOfFile());
}

// The field syntax applied the plain way, to the whole text at once: the data fields with where each starts.
struct ModelField {
    std::string text;
    std::int64_t line;
    std::int64_t field;
    bool operator==(const ModelField&) const = default;
    friend void PrintTo(const ModelField& f, std::ostream* os) {
        *os << '"' << f.text << "\" at line " << f.line << ", field " << f.field;
    }
};

std::vector<ModelField> modelFields(const std::string& bytes) {
    std::vector<ModelField> out;
    std::size_t i = 0;
    std::int64_t line = 1;
    std::int64_t field = 1;
    const auto isSeparator = [&](std::size_t k) { return bytes[k] == ',' || bytes[k] == '\r' || bytes[k] == '\n'; };
    while (i < bytes.size()) {
        while (i < bytes.size() && (bytes[i] == ' ' || bytes[i] == '\t'))
            ++i;
        if (i == bytes.size())
            break;
        const std::int64_t fieldLine = line;
        const std::int64_t fieldIndex = field;
        std::string text;
        const bool quoted = bytes[i] == '"';
        if (quoted) {
            const std::size_t close = bytes.find('"', i + 1);
            const std::size_t stop = close == std::string::npos ? bytes.size() : close;
            text = bytes.substr(i + 1, stop - i - 1);
            for (std::size_t k = i + 1; k < stop; ++k)
                if (bytes[k] == '\n' || (bytes[k] == '\r' && (k + 1 == bytes.size() || bytes[k + 1] != '\n')))
                    ++line;
            i = stop == bytes.size() ? stop : stop + 1;
            while (i < bytes.size() && !isSeparator(i))
                ++i;
        } else {
            while (i < bytes.size() && !isSeparator(i))
                text += bytes[i++];
            while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
                text.pop_back();
        }
        if (i < bytes.size()) {
            if (bytes[i] == ',') {
                ++field;
            } else {
                if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')
                    ++i;
                ++line;
                field = 1;
            }
            ++i;
        }
        if (quoted || (!text.empty() && text.front() != ';'))
            out.push_back({text, fieldLine, fieldIndex});
    }
    return out;
}

// Files of several hundred kilobytes made of every kind of field, so that each kind meets the end of the read
// buffer at every offset: every field and the place reported for it agree with the plain reading above.
TEST(Fileio, LongFilesReadFieldForFieldAsTheSyntaxSays) {
    ScratchDir dir;
    const char* const pieces[] = {"5400", "-0.0125", "  padded  ", "\"quoted, with comma\"", "\"two\r\nlines\"",
                                  "\"cr\ronly\"", "\"\"", "; comment", ";", "\"q\"dropped", "\t9.91E+37\t",
                                  "a-longer-field-that-spans-several-words-of-the-scan"};
    const char* const separators[] = {",", ",", ",", "\r\n", "\n", "\r", ",\r\n"};
    for (unsigned seed = 1; seed <= 3; ++seed) {
        std::mt19937 random(seed);
        std::string bytes;
        while (bytes.size() < 300 * 1024) {
            bytes += pieces[random() % std::size(pieces)];
            bytes += separators[random() % std::size(separators)];
        }
        const std::vector<ModelField> expected = modelFields(bytes);
        RecordingSink sink;
        fileio io(sink);
        io.setFileName(dir.write("f.csv", bytes));
        ASSERT_FALSE(io.endOfFile()); // opens the file and fetches the first field
        for (std::size_t k = 0; k < expected.size(); ++k) {
            const FieldPosition where = io.tokenPosition();
            const ModelField read{io.readStr(), where.line, where.field};
            ASSERT_EQ(read, expected[k]) << "seed " << seed << ", field " << k;
        }
        EXPECT_TRUE(io.endOfFile());
        EXPECT_EQ(io.readStr(), expected.back().text); // and again past the end
        EXPECT_TRUE(sink.messages.empty());
    }
}

// Every kind of field, each starting at every offset around the end of the first read buffer.
TEST(Fileio, FieldsThatStraddleTheReadBufferReadAsTheSyntaxSays) {
    ScratchDir dir;
    const std::string tail = "5400,  padded  ,\"two\r\nlines\",\"cr\ronly\"\r\n; comment, more\r"
                             "\"q\"dropped,\t9.91E+37\t\n\"\",last,\r\n";
    for (std::size_t offset = 0; offset <= tail.size() + 2; ++offset) {
        // Rows of numbers, then one comment that fills up to the offset before the buffer's end.
        std::string bytes;
        const std::size_t fill = fileio::kReadBufferSize + 2 - offset;
        while (bytes.size() + 16 < fill)
            bytes += "12345,\r\n";
        bytes += std::string(fill - bytes.size() - 2, ';') + "\r\n";
        bytes += tail;
        RecordingSink sink;
        fileio io(sink);
        io.setFileName(dir.write("f.csv", bytes));
        ASSERT_FALSE(io.endOfFile());
        for (const ModelField& expected : modelFields(bytes)) {
            const FieldPosition where = io.tokenPosition();
            const ModelField read{io.readStr(), where.line, where.field};
            ASSERT_EQ(read, expected) << "offset " << offset;
        }
        EXPECT_TRUE(io.endOfFile());
        EXPECT_EQ(io.readStr(), "last");
    }
}

} // namespace
} // namespace vss
