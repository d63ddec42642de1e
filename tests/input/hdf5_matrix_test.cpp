#include "input/hdf5_matrix.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"

#include "tests/support/gzip.h"
#include "tests/support/hdf5_writer.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using test::Hdf5Writer;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::Pointwise;

class Hdf5Matrix : public testing::Test {
  protected:
    LoadedMatrix loaded(const std::function<void(Hdf5Writer&)>& write) {
        {
            Hdf5Writer file(path_);
            write(file);
        }
        return loadedAgain();
    }

    LoadedMatrix loadedAgain() {
        remarks_.clear();
        return load(path_, options_, remarks_, formats_with_hdf5());
    }

    std::string refusal(const std::function<void(Hdf5Writer&)>& write) {
        return test::refusal_of([&] { loaded(write); });
    }

    std::string remarks() const {
        std::string text;
        for (const Remark& remark : remarks_) {
            text += remark.text + "\n";
        }
        return text;
    }

    static std::vector<double> values(const LoadedMatrix& loaded) {
        const MatrixReport& report = loaded.matrix.report;
        return {loaded.matrix.values.get(),
                loaded.matrix.values.get() + report.rows * report.columns};
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("cells.h5ad");
    LoadOptions options_;
    std::vector<Remark> remarks_;
};

TEST_F(Hdf5Matrix, EveryWayToWriteAMatrixGivesTheSameValues) {
    for (const bool is_packed : {false, true}) {
        for (const char* const layer : {"", "X", "layers/by_columns", "layers/dense"}) {
            options_.layer = layer;
            const LoadedMatrix cells = loaded([&](Hdf5Writer& file) {
                if (is_packed) {
                    file.setChunks({2});
                    file.setGzip(true);
                }
                write_cells(file);
            });
            EXPECT_EQ(values(cells), test::kCells) << layer;
            EXPECT_EQ(cells.format, "hdf5");
            EXPECT_THAT(cells.matrix.row_names, ElementsAre("AAA-1", "CCC-1", "GGG-1", "TTT-1"));
            EXPECT_THAT(cells.matrix.column_names, ElementsAre("ACT1", "CDC28", "RPL3"));
        }
    }
    EXPECT_THAT(remarks(),
                HasSubstr("read layers/dense, 4 cells by 3 columns; it also has X, "
                          "layers/by_columns, obsm/X_pca"));
}

TEST_F(Hdf5Matrix, ComponentsAreReadWithTheNamesOfTheCells) {
    options_.layer = "obsm/X_pca";
    const LoadedMatrix cells = loaded(test::write_cells);
    EXPECT_THAT(values(cells), ElementsAre(0.5, 1, -2, 4, 8, -16, 0.25, 3));
    EXPECT_EQ(cells.matrix.row_names.front(), "AAA-1");
    EXPECT_TRUE(cells.matrix.column_names.empty());
}

TEST_F(Hdf5Matrix, RawCountsHaveColumnsOfTheirOwn) {
    options_.layer = "raw/X";
    const LoadedMatrix cells = loaded([](Hdf5Writer& file) {
        test::write_cells(file);
        file.group("raw");
        file.numbers("raw/X", {1, 2, 3, 4, 5, 6, 7, 9}, {4, 2}, H5T_STD_U16LE);
        file.table("raw/var", {"A", "B"});
    });
    EXPECT_THAT(values(cells), ElementsAre(1, 2, 3, 4, 5, 6, 7, 9));
    EXPECT_THAT(cells.matrix.column_names, ElementsAre("A", "B"));
}

TEST_F(Hdf5Matrix, MissingValuesAreThoseThatAreNoNumbers) {
    options_.layer = "layers/gaps";
    options_.missing = MissingPolicy::ColumnMean;
    const double gap = std::nan("");
    const LoadedMatrix cells = loaded([gap](Hdf5Writer& file) {
        test::write_cells(file);
        file.numbers("layers/gaps", {1, 2, 3, gap, 5, 6, 3, 8, 9, 5, 7, 1}, {4, 3});
    });
    EXPECT_EQ(cells.missing, 1U);
    EXPECT_EQ(values(cells)[3], 3.0);
}

void write_10x(Hdf5Writer& file, const std::string& group, bool is_new) {
    file.group(group);
    file.fixedTexts(group + "/barcodes", {"AAA-1", "CCC-1", "GGG-1", "TTT-1"}, 8);
    file.wholeNumbers(group + "/data", {2, 1, 3, 4, 5, 6});
    file.wholeNumbers(group + "/indices", {1, 2, 0, 0, 1, 2}, H5T_STD_I64LE);
    file.wholeNumbers(group + "/indptr", {0, 1, 3, 3, 6}, H5T_STD_I64LE);
    file.wholeNumbers(group + "/shape", {3, 4});
    if (is_new) {
        file.group(group + "/features");
        file.texts(group + "/features/name", {"ACT1", "CDC28", "RPL3"});
        file.texts(group + "/features/feature_type", {"Gene", "Gene", "Antibody"});
    } else {
        file.texts(group + "/gene_names", {"ACT1", "CDC28", "RPL3"});
    }
}

TEST_F(Hdf5Matrix, OfThePipelinesHasItsCellsAsRows) {
    for (const bool is_new : {true, false}) {
        const LoadedMatrix cells = loaded(
            [is_new](Hdf5Writer& file) { write_10x(file, is_new ? "matrix" : "R64", is_new); });
        // The entries of the second cell are in no order in the file.
        EXPECT_THAT(values(cells), ElementsAre(0, 2, 0, 3, 0, 1, 0, 0, 0, 4, 5, 6));
        EXPECT_EQ(cells.matrix.row_names.back(), "TTT-1");
        EXPECT_EQ(cells.matrix.column_names.back(), "RPL3");
        EXPECT_EQ(
            remarks().find("its columns are of 2 kinds (Antibody, Gene)") != std::string::npos,
            is_new);
    }
    options_.layer = "X";
    EXPECT_THAT(test::refusal_of([&] { loadedAgain(); }), HasSubstr("10x file, which has one"));
    options_.layer.clear();
    EXPECT_THAT(refusal([](Hdf5Writer& file) {
                    write_10x(file, "R64", false);
                    write_10x(file, "hg38", false);
                }),
                HasSubstr("several matrices (R64, hg38)"));
}

TEST_F(Hdf5Matrix, OfThePipelinesIsReadBesideLinks) {
    const LoadedMatrix cells = loaded([](Hdf5Writer& file) {
        write_10x(file, "matrix", true);
        H5Lcreate_soft("/matrix", file.id(), "alias", H5P_DEFAULT, H5P_DEFAULT);
        H5Lcreate_external("other.h5", "X", file.id(), "other", H5P_DEFAULT, H5P_DEFAULT);
    });
    EXPECT_EQ(cells.matrix.row_names.back(), "TTT-1");
    EXPECT_THAT(refusal([](Hdf5Writer& file) {
                    file.group("data");
                    write_10x(file, "data/cells", true);
                    H5Lcreate_soft("/data/cells", file.id(), "matrix", H5P_DEFAULT, H5P_DEFAULT);
                }),
                HasSubstr("cells.h5ad: matrix: this is a link to another place"));
}

TEST_F(Hdf5Matrix, WhatIsNotThereIsRefusedWithWhatIs) {
    options_.layer = "obsm/X_pac";
    EXPECT_THAT(
        refusal(test::write_cells),
        HasSubstr("cells.h5ad: has no matrix obsm/X_pac; did you mean obsm/X_pca?\nIt has X, "
                  "layers/by_columns, layers/dense, obsm/X_pca: choose with"));
    options_.layer.clear();
    EXPECT_THAT(refusal([](Hdf5Writer&) {}), HasSubstr("neither of AnnData (.h5ad) nor of 10x"));
    EXPECT_THAT(refusal([](Hdf5Writer& file) {
                    file.group("row_attrs");
                    file.numbers("matrix", test::kCells, {4, 3});
                }),
                HasSubstr("this is a loom file"));
    EXPECT_THAT(refusal([](Hdf5Writer& file) {
                    file.numbers("X", test::kCells, {4, 3});
                }),
                HasSubstr("cells.h5ad: obs: is not there"));
    EXPECT_THAT(refusal([](Hdf5Writer& file) {
                    file.table("obs", {"a", "b", "c", "d"});
                    file.table("var", {"A", "B", "C"});
                    file.texts("X", {"a", "b", "c"});
                }),
                HasSubstr("cells.h5ad: X: has 1 dimension, and 2 are needed"));
}

TEST_F(Hdf5Matrix, ExtentsThatDoNotFitAreRefused) {
    const auto with = [](std::size_t cells, std::size_t genes, const std::string& encoding) {
        return [=](Hdf5Writer& file) {
            file.table("obs", std::vector<std::string>(cells, "a"));
            file.table("var", std::vector<std::string>(genes, "A"));
            file.sparseGroup("X", encoding, {4, 3});
            file.numbers("X/data", {1});
            file.wholeNumbers("X/indices", {1});
            file.wholeNumbers("X/indptr", {0, 1, 1, 1, 1});
        };
    };
    EXPECT_THAT(refusal(with(5, 3, "csr_matrix")),
                HasSubstr("cells.h5ad: X: has 4 rows, and obs names 5\nThe file may be damaged"));
    EXPECT_THAT(refusal(with(4, 2, "csr_matrix")), HasSubstr("X: has 3 columns, and var names 2"));
    EXPECT_THAT(refusal(with(4, 3, "coo_matrix")), HasSubstr("X: is written as \"coo_matrix\""));
    EXPECT_THAT(refusal(with(4, 3, "csc_matrix")),
                HasSubstr("X/indptr: has 5 elements, and 3 columns need 4"));
}

TEST_F(Hdf5Matrix, LargeSparseMatricesStaySoWhereThatIsWanted) {
    const auto write = [](Hdf5Writer& file) {
        const std::int64_t columns = 7'000'000;
        file.table("obs", {"a", "b", "c"});
        // A table without names of so many columns would take long to write.
        file.group("obsm");
        file.sparseGroup("obsm/wide", "csr_matrix", {3, columns});
        file.numbers("obsm/wide/data", {3, 1, 2});
        file.wholeNumbers("obsm/wide/indices", {columns - 1, 5, 0});
        file.wholeNumbers("obsm/wide/indptr", {0, 2, 2, 3});
    };
    options_.layer = "obsm/wide";
    options_.keeps_sparse = true;
    options_.transformations.log1p = true;
    options_.transformations.row_total = RowTotal{8.0};
    const LoadedMatrix wide = loaded(write);
    ASSERT_TRUE(wide.matrix.sparse);
    EXPECT_EQ(wide.matrix.values, nullptr);
    EXPECT_THAT(wide.matrix.sparse->starts, ElementsAre(0, 2, 2, 3));
    EXPECT_THAT(wide.matrix.sparse->column_of, ElementsAre(5, 6'999'999, 0));
    EXPECT_THAT(wide.matrix.sparse->values,
                Pointwise(DoubleEq(), {std::log1p(2.0), std::log1p(6.0), std::log1p(8.0)}));
    EXPECT_THAT(remarks(),
                HasSubstr("transformed by row totals 8, log1p; the total is 8, and 1 row "
                          "without counts stays as it is"));
    options_.keeps_sparse = false;
    options_.most_bytes = 1e8;
    EXPECT_THAT(test::refusal_of([&] { loadedAgain(); }),
                HasSubstr("made dense, takes about 168 MB of memory, and 100 MB are left\nGive pca "
                          "50: it stays sparse"));
}

TEST_F(Hdf5Matrix, NoMoreMemoryIsTakenThanThereIs) {
    const auto large = [](Hdf5Writer& file) {
        test::write_cells(file);
        file.numbers("layers/large", std::vector<double>(200'000, 1.0), {4, 50'000});
    };
    options_.layer = "layers/large";
    options_.most_bytes = 1e6;
    EXPECT_THAT(refusal(large),
                HasSubstr("reading layers/large of 4 rows and 50000 columns takes about 2 MB of "
                          "memory, and 1 MB are left\nTake its components (layer obsm/X_pca)."));
}

TEST_F(Hdf5Matrix, TellsHowMuchOfItIsRead) {
    constexpr std::uint64_t kRows = 3000;
    const auto write = [](Hdf5Writer& file) {
        file.table("obs", std::vector<std::string>(kRows, "a"));
        file.group("obsm");
        std::vector<double> values(1000 * kRows, 1.0);
        values[0] = 2.0;
        file.numbers("obsm/dense", values, {kRows, 1000}, H5T_STD_U8LE);
        file.sparseGroup("obsm/by_columns", "csc_matrix", {kRows, 1});
        file.numbers("obsm/by_columns/data", {1, 2});
        file.wholeNumbers("obsm/by_columns/indices", {0, 2});
        file.wholeNumbers("obsm/by_columns/indptr", {0, 2});
    };
    std::vector<std::pair<std::uint64_t, std::uint64_t>> told;
    options_.on_stage = [&told](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Reading);
        told.emplace_back(done, total);
    };
    const auto told_of = [&](const std::string& layer) {
        options_.layer = layer;
        told.clear();
        loaded(write);
        // What comes before is about the head of the file.
        told.erase(told.begin(), std::find(told.begin(), told.end(), std::pair(0UL, 0UL)));
        return told;
    };
    told_of("obsm/dense");
    const std::uint64_t bytes = std::filesystem::file_size(path_);
    const auto part = [bytes](double share) {
        return Pair(static_cast<std::uint64_t>(share * static_cast<double>(bytes)), bytes);
    };
    EXPECT_THAT(told,
                ElementsAre(Pair(0, 0),
                            part(1048.0 / 3000.0),
                            part(2096.0 / 3000.0),
                            Pair(bytes, bytes),
                            Pair(1, 1)));
    EXPECT_THAT(told_of("obsm/by_columns"),
                ElementsAre(Pair(0, 0), part(1.0 / 3.0), Pair(bytes, bytes), Pair(1, 1)));
}

TEST_F(Hdf5Matrix, OnlyTheFileItselfIsRead) {
    Hdf5Writer(directory_.file("other.h5")).numbers("X", test::kCells, {4, 3});
    EXPECT_THAT(refusal([](Hdf5Writer& file) {
                    file.table("obs", {"a", "b", "c", "d"});
                    file.table("var", {"A", "B", "C"});
                    H5Lcreate_external("other.h5", "X", file.id(), "X", H5P_DEFAULT, H5P_DEFAULT);
                }),
                HasSubstr("cells.h5ad: X: this is a link into another file, and links are not "
                          "followed"));
    options_.layer = "layers/dense";
    EXPECT_THAT(refusal([](Hdf5Writer& file) {
                    file.table("obs", {"a", "b", "c", "d"});
                    file.table("var", {"A", "B", "C"});
                    file.numbers("elsewhere", test::kCells, {4, 3});
                    file.group("layers");
                    H5Lcreate_soft(
                        "/elsewhere", file.id(), "layers/dense", H5P_DEFAULT, H5P_DEFAULT);
                }),
                HasSubstr("layers/dense: this is a link to another place"));
    const std::string packed =
        directory_.write("cells.h5ad.gz", test::gzipped(test::read_file(path_)));
    EXPECT_THAT(test::refusal_of([&] { load(packed, options_, remarks_, formats_with_hdf5()); }),
                HasSubstr("Give the file itself, not packed and not through a pipe."));
}

TEST_F(Hdf5Matrix, CutOffFilesAreRefusedWhereverTheyEnd) {
    loaded([](Hdf5Writer& file) {
        file.setChunks({2});
        file.setGzip(true);
        test::write_cells(file);
    });
    const std::string whole = test::read_file(path_);
    for (std::size_t size = 8; size < whole.size(); size += 97) {
        directory_.write("cells.h5ad", whole.substr(0, size));
        EXPECT_THAT(test::refusal_of([&] { loadedAgain(); }), HasSubstr("cells.h5ad"))
            << size << " of " << whole.size();
    }
}

TEST(Hdf5, IsRecognisedByItsFirstBytes) {
    EXPECT_TRUE(is_hdf5("\x89HDF\r\n\x1a\nmore"));
    EXPECT_FALSE(is_hdf5("\x89HDF\n"));
    EXPECT_FALSE(is_hdf5(""));
}

TEST_F(Hdf5Matrix, AtWhoseTextsTheLibraryCrashesIsRefused) {
    loaded([](Hdf5Writer& file) { test::write_cells(file); });
    // Where the texts lie: the first of them gets a size of 2^40.
    std::string bytes = test::read_file(path_);
    const std::size_t heap = bytes.find("GCOL");
    ASSERT_NE(heap, std::string::npos);
    bytes[heap + 24 + 5] = '\1';
    std::ofstream(path_, std::ios::binary) << bytes;
    EXPECT_THAT(test::refusal_of([&] { loadedAgain(); }),
                HasSubstr(": the names or attributes of this HDF5 file cannot be read: it is "
                          "damaged\nFetch or write it again."));
}

}  // namespace
}  // namespace ovik
