#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <glog/logging.h>

namespace ovik::test {

/// Keeps what is logged.
class RecordingSink : public google::LogSink {
  public:
    struct Line {
        google::LogSeverity severity;
        std::string file;
        int line;
        std::string message;
    };

    RecordingSink() { google::AddLogSink(this); }

    RecordingSink(const RecordingSink&) = delete;
    RecordingSink& operator=(const RecordingSink&) = delete;

    ~RecordingSink() override { google::RemoveLogSink(this); }

    using google::LogSink::send;

    void send(google::LogSeverity severity,
              const char* full_filename,
              const char* /*base_filename*/,
              int line,
              const google::LogMessageTime& /*time*/,
              const char* message,
              std::size_t length) override {
        lines.push_back({severity, full_filename, line, std::string(message, length)});
    }

    std::vector<Line> lines;
};

}  // namespace ovik::test
