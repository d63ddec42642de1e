#pragma once

#include <cstddef>
#include <memory>
#include <streambuf>
#include <string>
#include <vector>

namespace ovik {

/// What a gzip stream holds, as a stream: of all its members, one after the other.
class GzipBuffer : public std::streambuf {
  public:
    /// @param packed  not owned; read from where it stands
    /// @param begun   what has been read of it
    /// @param name    of the file, for messages
    /// @throws std::bad_alloc
    GzipBuffer(std::streambuf& packed, std::string begun, std::string name);

    GzipBuffer(const GzipBuffer&) = delete;
    GzipBuffer& operator=(const GzipBuffer&) = delete;

    ~GzipBuffer() override;

  protected:
    /// @throws InputError if the data are damaged or end before they are complete
    int_type underflow() override;

  private:
    class Inflater;

    std::streambuf& packed_;
    std::string name_;
    std::unique_ptr<Inflater> inflater_;
    std::string input_;
    std::vector<char> output_;
};

}  // namespace ovik
