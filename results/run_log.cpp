#include "results/run_log.h"

#include <cerrno>

#include "util/format.h"
#include "util/write_string.h"

namespace ovik {

std::string run_log_record(const std::string& data_title,
                           double perplexity,
                           const std::string& table_stem) {
    return run_log_record(data_title, "perplexity = " + num2string(perplexity, 1), table_stem);
}

std::string run_log_record(const std::string& data_title,
                           const std::string& neighbourhood,
                           const std::string& table_stem) {
    const std::string sentence = data_title + " using t-SNE method (" + neighbourhood + ").";
    return "1-1-1-0\n" + sentence + "\n" + sentence +
           " The darker color means that there are overlaps.\n" + table_stem + "\n";
}

std::error_code append_run_log(const std::string& out_base,
                               const std::string& data_title,
                               double perplexity,
                               const std::string& table_stem) {
    return append_run_log(
        out_base, data_title, "perplexity = " + num2string(perplexity, 1), table_stem);
}

std::error_code append_run_log(const std::string& out_base,
                               const std::string& data_title,
                               const std::string& neighbourhood,
                               const std::string& table_stem) {
    const bool written = write_string(out_base + ".log",
                                      run_log_record(data_title, neighbourhood, table_stem),
                                      "",
                                      "a+",
                                      "",
                                      "#",
                                      "\n");
    return written ? std::error_code() : std::error_code(errno, std::generic_category());
}

}  // namespace ovik
