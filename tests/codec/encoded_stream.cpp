#include "codec/encoded_stream.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

#include "support/run_process.h"
#include "support/temp_folder.h"

namespace clipfix::test {

namespace {

[[noreturn]] void Fail(const std::string& what, const std::string& detail) {
    std::fprintf(stderr, "%s\n%s\n", what.c_str(), detail.c_str());
    std::exit(2);
}

ProcessResult RunFfmpeg(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"ffmpeg", "-hide_banner", "-nostdin"});
    ProcessResult result = RunProcess(arguments);
    if (result.status != 0) {
        Fail("ffmpeg is needed for these tests, and failed", result.err);
    }
    return result;
}

// A line such as
//     [trace_headers @ 0x55db93dbc5c0] 37          max_num_ref_frames            00100 = 3
bool ParseLine(const std::string& line, std::string& name, std::string& bits, std::int64_t& value) {
    if (line.rfind("[trace_headers @", 0) != 0) {
        return false;
    }
    std::istringstream words(line.substr(line.find(']') + 1));
    std::int64_t position = 0;
    std::string equals;
    return static_cast<bool>(words >> position >> name >> bits >> equals >> value) && equals == "=";
}

void ReadTrace(const std::string& trace, EncodedStream& stream) {
    std::vector<TracedUnit>* target = &stream.recordUnits;
    std::istringstream lines(trace);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.find("] Packet:") != std::string::npos) {
            target = &stream.units;
        }
        std::string name;
        std::string bits;
        std::int64_t value = 0;
        if (!ParseLine(line, name, bits, value)) {
            continue;
        }
        if (name == "forbidden_zero_bit") {
            target->emplace_back();
        }
        // The heads of the record itself come ahead of its first unit.
        if (!target->empty()) {
            target->back().values.emplace(name, value);
            target->back().elements.emplace_back(name, bits);
        }
    }
}

}  // namespace

std::int64_t TracedUnit::Value(const std::string& name) const {
    const auto found = values.find(name);
    if (found == values.end()) {
        Fail("the tracer does not tell the element", name);
    }
    return found->second;
}

std::string TracedUnit::BitsFrom(const std::string& name) const {
    std::string bits;
    bool isBehind = false;
    for (const auto& [element, elementBits] : elements) {
        isBehind = isBehind || element == name;
        if (isBehind) {
            bits += elementBits;
        }
    }
    return bits;
}

ByteView EncodedStream::Box(const char (&type)[5]) const {
    for (std::size_t at = 4; at + 4 <= file.size(); ++at) {
        if (MatchesAt(file, at, type)) {
            return SubView(file, at - 4, ReadBig32(file, at - 4));
        }
    }
    return {};
}

std::vector<CNALU> EncodedStream::Walk(const ReferenceParameterSets& reference) const {
    std::vector<CNALU> walked;
    const ByteView media = SubView(Box("mdat"), 8);
    std::size_t at = 0;
    while (at < media.size()) {
        auto unit = CNALU::Parse(SubView(media, at, CNALU::kProbeLength), 4, reference);
        if (!unit) {
            break;
        }
        at += unit->size;
        walked.push_back(std::move(*unit));
    }
    return walked;
}

std::vector<ByteVector> EncodedStream::Probes() const {
    std::vector<ByteVector> probes;
    const ByteView media = SubView(Box("mdat"), 8);
    for (std::size_t at = 0; at < media.size(); at += std::size_t{4} + ReadBig32(media, at)) {
        const ByteView probe = SubView(media, at, CNALU::kProbeLength);
        probes.emplace_back(probe.begin(), probe.end());
    }
    return probes;
}

namespace {

EncodedStream EncodeAnew(const std::vector<std::string>& options) {
    const TempFolder folder;
    const std::string path = (folder / "stream.mp4").string();
    std::vector<std::string> arguments{
        "-v", "error", "-f", "lavfi", "-i", "testsrc2=s=416x240:r=25", "-an"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(path);
    static_cast<void>(RunFfmpeg(arguments));
    EncodedStream stream;
    stream.file = ReadFile(path);
    const ProcessResult traced = RunFfmpeg(
        {"-v", "info", "-i", path, "-c", "copy", "-bsf:v", "trace_headers", "-f", "null", "-"});
    ReadTrace(traced.err, stream);
    return stream;
}

}  // namespace

const EncodedStream& Encode(const std::vector<std::string>& options) {
    static std::map<std::vector<std::string>, EncodedStream> made;
    const auto known = made.find(options);
    return known != made.end() ? known->second
                               : made.emplace(options, EncodeAnew(options)).first->second;
}

}  // namespace clipfix::test
