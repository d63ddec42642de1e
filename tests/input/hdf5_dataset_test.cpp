#include "input/hdf5_dataset.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include "tests/support/hdf5_writer.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::hdf5 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class DatasetOfAFile : public testing::Test {
  protected:
    void write(const std::function<void(test::Hdf5Writer&)>& content) {
        test::Hdf5Writer file(path_);
        content(file);
    }

    File open(double most = 1e9) const { return {path_, "m.h5", most}; }

    std::string refusal(const std::function<void(test::Hdf5Writer&)>& content,
                        const std::function<void(const File&)>& read) {
        write(content);
        return test::refusal_of([&] { read(open()); });
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("m.h5");
};

/// Makes an array of numbers whose chunks go through filters.
void filtered(test::Hdf5Writer& file,
              hsize_t size,
              const std::function<void(hid_t creation)>& set_filters,
              const std::function<void(hid_t dataset)>& fill) {
    const hid_t space = H5Screate_simple(1, &size, nullptr);
    const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(creation, 1, &size);
    set_filters(creation);
    const hid_t dataset =
        H5Dcreate2(file.id(), "a", H5T_IEEE_F64LE, space, H5P_DEFAULT, creation, H5P_DEFAULT);
    fill(dataset);
    H5Dclose(dataset);
    H5Pclose(creation);
    H5Sclose(space);
}

TEST_F(DatasetOfAFile, IsReadInPartsAndAsAWhole) {
    write([](test::Hdf5Writer& file) {
        file.setChunks({2});
        file.setGzip(true);
        file.numbers("a", {1, 2, 3, 4, 5}, {}, H5T_IEEE_F32BE);
        file.wholeNumbers("b", {-1, 7, 1LL << 40}, H5T_STD_I64BE);
    });
    const File file = open();
    const Dataset numbers(file, "a");
    EXPECT_THAT(numbers.shape(), ElementsAre(5));
    std::vector<double> values(5);
    numbers.readAll(values.data());
    EXPECT_THAT(values, ElementsAre(1, 2, 3, 4, 5));
    numbers.read(1, 4, values.data());
    EXPECT_THAT(values, ElementsAre(2, 3, 4, 4, 5));
    EXPECT_EQ(numbers.block() % 2, 0U);
    const Dataset whole(file, "b");
    std::vector<std::int64_t> integers(3);
    whole.read(0, 3, integers.data());
    EXPECT_THAT(integers, ElementsAre(-1, 7, 1LL << 40));
}

TEST_F(DatasetOfAFile, TextsOfAnyLengthAreRead) {
    write([](test::Hdf5Writer& file) {
        file.texts("a", {"one", "", "drei \xc3\xa4"});
        file.fixedTexts("b", {"one", "full", ""}, 4);
    });
    const File file = open();
    for (const char* const path : {"a", "b"}) {
        std::vector<std::string> texts(3);
        Dataset(file, path).forEachText([&](std::size_t i, std::string text) {
            texts[i] = std::move(text);
        });
        EXPECT_THAT(texts,
                    path[0] == 'a' ? ElementsAre("one", "", "drei \xc3\xa4")
                                   : ElementsAre("one", "full", ""));
    }
    EXPECT_THAT(test::refusal_of([&] { Dataset(file, "a").requireNumbers(); }),
                HasSubstr("m.h5: a: its elements are no numbers"));
}

/// Texts of any length in one chunk, packed without shuffling, which makes references longest.
void write_packed_texts(test::Hdf5Writer& file,
                        const char* path,
                        const std::vector<std::string>& texts) {
    std::vector<const char*> bytes;
    for (const std::string& text : texts) {
        bytes.push_back(text.c_str());
    }
    const hsize_t size = texts.size();
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, H5T_VARIABLE);
    const hid_t space = H5Screate_simple(1, &size, nullptr);
    const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(creation, 1, &size);
    H5Pset_deflate(creation, 1);
    const hid_t dataset =
        H5Dcreate2(file.id(), path, type, space, H5P_DEFAULT, creation, H5P_DEFAULT);
    H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, static_cast<const void*>(bytes.data()));
    EXPECT_GT(H5Dget_storage_size(dataset), hsize_t{1} << 18U);
    H5Dclose(dataset);
    H5Pclose(creation);
    H5Sclose(space);
    H5Tclose(type);
}

TEST_F(DatasetOfAFile, ManyTextsAreReadFromOneChunk) {
    // More bytes than are taken on trust.
    std::vector<std::string> written(150'000);
    for (std::size_t i = 0; i < written.size(); ++i) {
        written[i] = "cell " + std::to_string(i * 7919 % written.size());
    }
    write([&](test::Hdf5Writer& file) {
        write_packed_texts(file, "a", written);
        file.setChunks({written.size()});
        file.setGzip(true);
        file.fixedTexts("b", written, 40);
    });
    const File file = open();
    for (const char* const path : {"a", "b"}) {
        std::vector<std::string> texts(written.size());
        Dataset(file, path).forEachText([&](std::size_t i, std::string text) {
            texts[i] = std::move(text);
        });
        EXPECT_EQ(texts, written) << path;
    }
}

TEST_F(DatasetOfAFile, TextsThatFillTheMemoryAreRefused) {
    const std::string refused = refusal(
        [](test::Hdf5Writer& file) {
            file.texts("a", std::vector<std::string>(40, std::string(1'000'000, 'x')));
        },
        [](const File& file) {
            Dataset(file, "a").forEachText([](std::size_t /*i*/, const std::string& /*text*/) {});
        });
    EXPECT_THAT(refused, HasSubstr("m.h5: a: its texts are longer than names are"));
}

TEST_F(DatasetOfAFile, FiltersThatAreNotReadAreNamed) {
    const auto none = [](hid_t /*dataset*/) {};
    const auto read = [](const File& file) { Dataset(file, "a"); };
    EXPECT_THAT(refusal(
                    [&](test::Hdf5Writer& file) {
                        filtered(
                            file,
                            100,
                            [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, 2); },
                            none);
                    },
                    read),
                HasSubstr("m.h5: a: is packed by the filter scaleoffset, and gzip alone is read"));
    EXPECT_THAT(
        refusal(
            [&](test::Hdf5Writer& file) {
                filtered(
                    file,
                    100,
                    [](hid_t list) { H5Pset_filter(list, 32000, H5Z_FLAG_OPTIONAL, 0, nullptr); },
                    none);
            },
            read),
        HasSubstr("is packed by the filter lzf"));
    EXPECT_THAT(refusal(
                    [&](test::Hdf5Writer& file) {
                        filtered(
                            file,
                            100,
                            [](hid_t list) {
                                H5Pset_deflate(list, 1);
                                H5Pset_deflate(list, 1);
                            },
                            none);
                    },
                    read),
                HasSubstr("is packed by gzip and then changed again"));
}

TEST_F(DatasetOfAFile, ChunksThatUnpackToMoreThanAChunkAreRefused) {
    // A chunk of 1 MB whose bytes unpack to 4 MB; the first are such as packing does not shorten.
    std::vector<unsigned char> bytes(4'000'000, 0);
    std::uint32_t drawn = 1;
    for (std::size_t i = 0; i < 300'000; ++i) {
        drawn = drawn * 1'664'525U + 1'013'904'223U;
        bytes[i] = static_cast<unsigned char>(drawn >> 24U);
    }
    uLongf size = compressBound(bytes.size());
    std::vector<unsigned char> packed(size);
    ASSERT_EQ(compress(packed.data(), &size, bytes.data(), bytes.size()), Z_OK);
    packed.resize(size);
    ASSERT_GT(packed.size(), std::size_t{1} << 18U);
    EXPECT_THAT(refusal(
                    [&](test::Hdf5Writer& file) {
                        filtered(
                            file,
                            131'072,
                            [](hid_t list) { H5Pset_deflate(list, 9); },
                            [&](hid_t dataset) {
                                const hsize_t origin = 0;
                                H5Dwrite_chunk(
                                    dataset, H5P_DEFAULT, 0, &origin, packed.size(), packed.data());
                            });
                    },
                    [](const File& file) { Dataset(file, "a"); }),
                HasSubstr("m.h5: a: a chunk unpacks to more bytes than a chunk has\nThe file is "
                          "damaged, or made to fill the memory"));
}

TEST_F(DatasetOfAFile, ChunksThatWereNeverWrittenAreRefusedByTheirNumber) {
    // A shape of so many chunks that looking at each would take years.
    const auto write_one = [](bool is_packed) {
        return [is_packed](test::Hdf5Writer& file) {
            const hsize_t size = hsize_t{1} << 50U;
            const hsize_t chunk = 4;
            const hid_t space = H5Screate_simple(1, &size, nullptr);
            const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
            H5Pset_chunk(creation, 1, &chunk);
            if (is_packed) {
                H5Pset_deflate(creation, 9);
            }
            const hid_t dataset = H5Dcreate2(
                file.id(), "a", H5T_IEEE_F64LE, space, H5P_DEFAULT, creation, H5P_DEFAULT);
            const hsize_t origin = 0;
            H5Sselect_hyperslab(space, H5S_SELECT_SET, &origin, nullptr, &chunk, nullptr);
            const hid_t memory = H5Screate_simple(1, &chunk, nullptr);
            const std::vector<double> values(chunk, 1.0);
            H5Dwrite(dataset, H5T_NATIVE_DOUBLE, memory, space, H5P_DEFAULT, values.data());
            H5Sclose(memory);
            H5Dclose(dataset);
            H5Pclose(creation);
            H5Sclose(space);
        };
    };
    for (const bool is_packed : {false, true}) {
        EXPECT_THAT(refusal(write_one(is_packed), [](const File& file) { Dataset(file, "a"); }),
                    HasSubstr("m.h5: a: has 1 of the 281474976710656 chunks of its shape: the "
                              "others were never written\nWrite the file again."));
    }
}

TEST_F(DatasetOfAFile, OnlyArraysInTheFileAreRead) {
    const auto read = [](const File& file) { Dataset(file, "a"); };
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) { file.group("a"); }, read),
                HasSubstr("m.h5: a: is a group, and an array is needed"));
    EXPECT_THAT(refusal([](test::Hdf5Writer&) {}, read), HasSubstr("m.h5: a: is not there"));
    EXPECT_THAT(
        refusal(
            [&](test::Hdf5Writer& file) {
                const hsize_t size = 4;
                const hid_t space = H5Screate_simple(1, &size, nullptr);
                const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
                H5Pset_external(creation, "/etc/hostname", 0, 32);
                H5Dclose(H5Dcreate2(
                    file.id(), "a", H5T_IEEE_F64LE, space, H5P_DEFAULT, creation, H5P_DEFAULT));
                H5Pclose(creation);
                H5Sclose(space);
            },
            read),
        HasSubstr("its numbers are in other files, which are not opened"));
    EXPECT_THAT(refusal(
                    [&](test::Hdf5Writer& file) {
                        filtered(
                            file, 100, [](hid_t) {}, [](hid_t) {});
                    },
                    read),
                HasSubstr("has a shape and no elements"));
}

TEST_F(DatasetOfAFile, AChunkHasToFitInMemory) {
    write([](test::Hdf5Writer& file) {
        file.setChunks({100'000});
        file.numbers("a", std::vector<double>(100'000, 1.0));
    });
    EXPECT_THAT(test::refusal_of([&] { Dataset(open(1e6), "a"); }),
                HasSubstr("a chunk of it takes about 2 MB of memory, and 1 MB are left"));
}

}  // namespace
}  // namespace ovik::hdf5
