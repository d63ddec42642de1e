#include "util/matrix_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "util/input_error.h"
#include "util/input_file.h"

namespace ovik {

namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw InputError(path + ": " + reason);
}

/// The formats that users take for text.
void check_first_bytes(const std::string& path, std::string_view bytes) {
    if (bytes.starts_with("\x1f\x8b")) {
        refuse(path, "this is a gzip archive: unpack it first (gunzip)");
    }
    if (bytes.starts_with("PK\x03\x04")) {
        refuse(path,
               "this is a zip archive or a spreadsheet: save the sheet as tab-separated text");
    }
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) {
        refuse(path, "this is UTF-16 text: save it as UTF-8 or plain ASCII");
    }
    const std::size_t nul = bytes.find('\0');
    if (nul != std::string_view::npos) {
        refuse_nul_byte(
            path,
            static_cast<std::size_t>(std::count(bytes.begin(), bytes.begin() + nul, '\n')) + 1);
    }
    // One at the very end may be the half of a Windows line end.
    if (bytes.substr(0, bytes.size() - 1).find('\r') != std::string_view::npos &&
        bytes.find('\n') == std::string_view::npos) {
        refuse(path,
               "its lines end with carriage returns alone, as on old Macintoshes: save it with "
               "Unix or Windows line ends (tr '\\r' '\\n')");
    }
}

}  // namespace

void refuse_nul_byte(const std::string& path, std::size_t line) {
    refuse(path + ":" + std::to_string(line), "the line holds a NUL byte, so this is no text file");
}

std::ifstream open_matrix_file(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        refuse(path, "there is no such file");
    }
    if (error) {
        refuse(path, "cannot be read (" + error.message() + ")");
    }
    if (std::filesystem::is_directory(status)) {
        refuse(path, "this is a directory: name the matrix file in it");
    }
    if (!std::filesystem::is_regular_file(status)) {
        refuse(path,
               "this is no regular file, and the matrix is read twice: save it to a file first");
    }
    std::ifstream file = open_input_file(path);
    if (!file.is_open()) {
        refuse(path, "cannot be read (" + std::generic_category().message(errno) + ")");
    }
    constexpr std::size_t kBytesLookedAt = 65536;
    std::string bytes(kBytesLookedAt, ' ');
    with_read_failures_named(
        path, [&] { file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())); });
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    check_first_bytes(path, bytes);
    file.clear();
    file.seekg(0);
    return file;
}

}  // namespace ovik
