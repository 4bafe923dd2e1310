// Reading a 10 MB setting file through fileio, beside a plain split of the same bytes into fields.
// Run: build/release/bench/storage/storage_bench (bytes_per_second is the throughput of each; the last line
// gives the two throughputs and their ratio).

#include "storage/fileio.h"
#include "storage/NumberText.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace {

class NullSink : public vss::MessageSink {
public:
    void show(std::string_view, std::string_view) override {}
};

// A setting file of about 10 MB shaped like an exported one: headers, comment captions, quoted labels, numbers.
const std::string& settingFile() {
    static const std::string path = [] {
        const auto file = std::filesystem::temp_directory_path() / "vss-storage-bench.csv";
        std::ofstream out(file, std::ios::binary);
        std::size_t written = 0;
        for (int block = 0; written < 10 * 1024 * 1024; ++block) {
            std::string text = "; --------------------------------\r\n; %LoadPosition\r\n"
                               "; --------------------------------\r\n%LoadPosition\r\n"
                               "; n,; Radius,; Skew,; RPM\r\n";
            for (int row = 0; row < 20; ++row)
                text += "\"Load\"," + vss::numbertext::formatDouble(0.0123456789 * (block + row)) + "," +
                        vss::numbertext::formatDouble(-3.25 + row) + "," + std::to_string(5400 + row) + ",\r\n";
            out << text;
            written += text.size();
        }
        return file.string();
    }();
    return path;
}

std::size_t fileSize() { return static_cast<std::size_t>(std::filesystem::file_size(settingFile())); }

void FileioReadFields(benchmark::State& state) {
    NullSink sink;
    std::size_t fields = 0;
    for (auto _ : state) {
        vss::fileio io(sink);
        io.setFileName(settingFile());
        while (!io.endOfFile()) {
            benchmark::DoNotOptimize(io.readStr());
            ++fields;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * fileSize()));
    state.counters["fields"] = static_cast<double>(fields / static_cast<std::size_t>(state.iterations()));
}
BENCHMARK(FileioReadFields)->Unit(benchmark::kMillisecond);

// The same bytes read whole and cut at every comma and line end, each field copied out.
void PlainSplit(benchmark::State& state) {
    std::size_t fields = 0;
    for (auto _ : state) {
        std::string bytes(fileSize(), '\0');
        std::FILE* f = std::fopen(settingFile().c_str(), "rb");
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), f));
        std::fclose(f);
        std::string field;
        std::size_t start = 0;
        for (std::size_t i = 0; i <= bytes.size(); ++i) {
            if (i == bytes.size() || bytes[i] == ',' || bytes[i] == '\r' || bytes[i] == '\n') {
                field.assign(bytes, start, i - start);
                benchmark::DoNotOptimize(field);
                ++fields;
                start = i + 1;
            }
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * fileSize()));
    state.counters["fields"] = static_cast<double>(fields / static_cast<std::size_t>(state.iterations()));
}
BENCHMARK(PlainSplit)->Unit(benchmark::kMillisecond);

// The console report, followed by the comparison of the two reads measured in this run.
class ComparingReporter : public benchmark::ConsoleReporter {
public:
    ComparingReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                secondsPerRead_[run.run_name.function_name] =
                    run.real_accumulated_time / static_cast<double>(run.iterations);
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        const auto fileio = secondsPerRead_.find("FileioReadFields");
        const auto split = secondsPerRead_.find("PlainSplit");
        if (fileio == secondsPerRead_.end() || split == secondsPerRead_.end())
            return;
        const double megabytes = static_cast<double>(fileSize()) / 1e6;
        std::printf("fileio %.0f MB/s, plain split %.0f MB/s: fileio takes %.2f times as long\n",
                    megabytes / fileio->second, megabytes / split->second, fileio->second / split->second);
    }

private:
    std::map<std::string, double> secondsPerRead_;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    ComparingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
