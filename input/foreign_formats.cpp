#include "input/foreign_formats.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "input/byte_order_mark.h"

namespace ovik {

namespace {

/// What a file is, and what to do about it.
struct Foreign {
    std::string_view what;
    std::string_view cure;
};

constexpr std::string_view kFromPandas =
    "write the table as text (in Python: table.to_csv(\"matrix.tsv\", sep=\"\\t\"))";
constexpr std::string_view kFromPickle =
    "write the table as text (in Python: "
    "pandas.read_pickle(\"FILE\").to_csv(\"matrix.tsv\", sep=\"\\t\"))";
constexpr std::string_view kFromRObject =
    "write the matrix as text (in R: write.table(readRDS(\"FILE\"), \"matrix.tsv\", sep = \"\\t\", "
    "quote = FALSE, col.names = NA))";
constexpr std::string_view kFromRWorkspace =
    "write the matrix as text (in R: load(\"FILE\"), then write.table(x, \"matrix.tsv\", sep = "
    "\"\\t\", quote = FALSE, col.names = NA) for the matrix x)";
constexpr std::string_view kFromSheet =
    "open it in the spreadsheet program and save the sheet as tab-separated text (File > Save As > "
    "Text, tab delimited)";
constexpr std::string_view kUnpackFirst = "unpack it, and give the matrix file that is in it";
constexpr std::string_view kNoTable = "give the table of numbers itself, as tab-separated text";
constexpr std::string_view kQuantifyFirst =
    "give the table of expression values that was computed from it, genes by samples";

/// A string of bytes among which there may be zeros.
template <std::size_t Size>
constexpr std::string_view bytes(const char (&text)[Size]) {
    return {text, Size - 1};
}

struct Magic {
    std::string_view first_bytes;
    Foreign format;
};

/// What is told by its first bytes alone. A longer opening stands before a shorter one. An opening
/// that could be the name of a gene goes on with a byte that is no text: "PAR1" is one.
constexpr Magic kMagics[] = {
    // Tables of other programs.
    {"PAR1\x15",
     {"a Parquet file",
      "write it as text (in Python: pandas.read_parquet(\"FILE\").to_csv(\"matrix.tsv\", "
      "sep=\"\\t\"))"}},
    {bytes("ARROW1\0\0"),
     {"a Feather or Arrow file",
      "write it as text (in Python: pandas.read_feather(\"FILE\").to_csv(\"matrix.tsv\", "
      "sep=\"\\t\"))"}},
    {bytes("FEA1\0"),
     {"a Feather file",
      "write it as text (in Python: pandas.read_feather(\"FILE\").to_csv(\"matrix.tsv\", "
      "sep=\"\\t\"))"}},
    {bytes("Obj\x01"), {"an Avro file", kFromPandas}},
    {bytes("\x80\x02"), {"a Python pickle", kFromPickle}},
    {bytes("\x80\x03"), {"a Python pickle", kFromPickle}},
    {bytes("\x80\x04"), {"a Python pickle", kFromPickle}},
    {bytes("\x80\x05"), {"a Python pickle", kFromPickle}},
    {bytes("X\n\0\0\0"), {"an R object (.rds)", kFromRObject}},
    {"RDX2\n", {"an R workspace (.RData)", kFromRWorkspace}},
    {"RDX3\n", {"an R workspace (.RData)", kFromRWorkspace}},
    {"RDA2\n", {"an R workspace (.RData)", kFromRWorkspace}},
    {"RDA3\n", {"an R workspace (.RData)", kFromRWorkspace}},
    {bytes("\x89HDF\r\n\x1a\n"),
     {"an HDF5 file (.h5, .h5ad, .loom)",
      "write its matrix as text (in Python: "
      "anndata.read_h5ad(\"FILE\").to_df().T.to_csv(\"matrix.tsv\", sep=\"\\t\") for genes by "
      "samples)"}},
    {bytes("CDF\x01"), {"a NetCDF file", kNoTable}},
    {bytes("CDF\x02"), {"a NetCDF file", kNoTable}},
    {"MATLAB 5.0 MAT-file",
     {"a MATLAB file",
      "write the matrix as text (in MATLAB: writematrix(x, \"matrix.tsv\", \"FileType\", \"text\", "
      "\"Delimiter\", \"tab\"))"}},
    {bytes("SQLite format 3\0"),
     {"an SQLite database",
      "write the table as text (sqlite3 -header -separator $'\\t' FILE 'select * from ...' > "
      "matrix.tsv)"}},
    {"$FL2", {"an SPSS file", "write it as text (in R: haven::read_sav, then write.table)"}},
    {"<stata_dta>", {"a Stata file", "write it as text (in R: haven::read_dta, then write.table)"}},
    // Spreadsheets that are no zip archives.
    {"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", {"an Excel workbook of the old kind (.xls)", kFromSheet}},
    // Archives and packed files.
    {bytes("\xfd"
           "7zXZ"),
     {"packed by xz", "unpack it first (xz -d), or pack it with gzip"}},
    {"BZh", {"packed by bzip2", "unpack it first (bzip2 -d), or pack it with gzip"}},
    {"\x28\xb5\x2f\xfd", {"packed by zstd", "unpack it first (zstd -d), or pack it with gzip"}},
    {"\x04\x22\x4d\x18", {"packed by lz4", "unpack it first (lz4 -d), or pack it with gzip"}},
    {"\x1f\x9d", {"packed by compress", "unpack it first (gzip -d), or pack it with gzip"}},
    {"7z\xbc\xaf\x27\x1c", {"a 7-Zip archive", kUnpackFirst}},
    {"Rar!\x1a\x07", {"a RAR archive", kUnpackFirst}},
    // Text in an encoding of several bytes.
    {bytes("\xff\xfe\0\0"), {"UTF-32 text", "save it as UTF-8 or plain ASCII"}},
    {"\xff\xfe",
     {"UTF-16 text (Excel's \"Unicode text\")",
      "save it as UTF-8 or plain ASCII (iconv -f UTF-16 -t UTF-8 FILE > matrix.tsv)"}},
    {"\xfe\xff",
     {"UTF-16 text",
      "save it as UTF-8 or plain ASCII (iconv -f UTF-16 -t UTF-8 FILE > matrix.tsv)"}},
    // Documents, pictures and programs.
    {"%PDF-", {"a PDF document", kNoTable}},
    {"%!PS", {"a PostScript document", kNoTable}},
    {"{\\rtf", {"a text document (RTF)", kNoTable}},
    {"\x89PNG\r\n", {"a picture (PNG)", kNoTable}},
    {"\xff\xd8\xff", {"a picture (JPEG)", kNoTable}},
    {"GIF87a", {"a picture (GIF)", kNoTable}},
    {"GIF89a", {"a picture (GIF)", kNoTable}},
    {bytes("II*\0"), {"a picture (TIFF)", kNoTable}},
    {bytes("MM\0*"), {"a picture (TIFF)", kNoTable}},
    {"\x7f"
     "ELF",
     {"a program", kNoTable}},
    // Files of sequencers and arrays, before there are expression values.
    {bytes("BAM\x01"), {"a file of aligned reads (BAM)", kQuantifyFirst}},
    {"@HD\t", {"a file of aligned reads (SAM)", kQuantifyFirst}},
    {"@SQ\t", {"a file of aligned reads (SAM)", kQuantifyFirst}},
    {"##fileformat=VCF", {"a file of variants (VCF)", kQuantifyFirst}},
    {"##gff-version", {"an annotation of a genome (GFF)", kQuantifyFirst}},
    {"[CEL]", {"a scan of an array (CEL)", kQuantifyFirst}},
    {"OVIKCKPT",
     {"a checkpoint of ovik-tsne", "give the matrix file, and the checkpoint with --resume"}},
};

std::optional<Foreign> by_first_bytes(std::string_view head) {
    for (const Magic& magic : kMagics) {
        if (head.starts_with(magic.first_bytes)) {
            return magic.format;
        }
    }
    return std::nullopt;
}

constexpr std::string_view kZip = "PK\x03\x04";

bool holds(std::string_view head, std::string_view text) {
    return head.find(text) != std::string_view::npos;
}

/// Zip archives: workbooks, documents, arrays.
std::optional<Foreign> of_zip(std::string_view head) {
    if (!head.starts_with(kZip)) {
        return std::nullopt;
    }
    if (holds(head, "application/vnd.oasis.opendocument.spreadsheet")) {
        return Foreign{"an OpenDocument spreadsheet (.ods)", kFromSheet};
    }
    if (is_workbook(head)) {
        return Foreign{"an Excel workbook (.xlsx)", kFromSheet};
    }
    if (holds(head, "word/") || holds(head, "ppt/") || holds(head, "opendocument")) {
        return Foreign{"a text document or a presentation", kNoTable};
    }
    if (holds(head.substr(0, 300), ".npy")) {
        return Foreign{"an archive of NumPy arrays (.npz)",
                       "write the array alone (in Python: numpy.save(\"matrix.npy\", "
                       "numpy.load(\"FILE\")[\"NAME\"]))"};
    }
    return Foreign{"a zip archive", kUnpackFirst};
}

/// Whether a tar archive, which names itself behind its first file.
std::optional<Foreign> of_tar(std::string_view head) {
    constexpr std::size_t kPlace = 257;
    if (head.size() > kPlace && head.substr(kPlace).starts_with("ustar")) {
        return Foreign{"a tar archive", kUnpackFirst};
    }
    return std::nullopt;
}

std::string_view without_white_space_in_front(std::string_view text) {
    text = without_byte_order_mark(text);
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

/// The first bytes in small letters of ASCII.
std::string small_letters(std::string_view text) {
    constexpr std::size_t kEnough = 4096;
    std::string small(text.substr(0, kEnough));
    for (char& c : small) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return small;
}

/// Web pages, XML and what is told by its tags.
std::optional<Foreign> of_tags(std::string_view head) {
    const std::string text = small_letters(without_white_space_in_front(head));
    if (!text.starts_with('<')) {
        return std::nullopt;
    }
    if (holds(text, "urn:schemas-microsoft-com:office:spreadsheet") ||
        holds(text, "progid=\"excel.sheet\"")) {
        return Foreign{"an Excel workbook as XML", kFromSheet};
    }
    if (holds(text, "urn:schemas-microsoft-com:office:excel")) {
        return Foreign{"a web page that Excel opens (an .xls of HTML)", kFromSheet};
    }
    for (const std::string_view tag : {"<!doctype html", "<html", "<head", "<body", "<table"}) {
        if (holds(text, tag)) {
            return Foreign{"a web page (HTML)",
                           "the download may have ended on a page of the server: fetch the file "
                           "itself, or save the table as tab-separated text"};
        }
    }
    if (holds(text, "<svg")) {
        return Foreign{"a picture (SVG)", kNoTable};
    }
    if (text.starts_with("<?xml") || text.starts_with("<!doctype") || text.starts_with("<!--")) {
        return Foreign{"an XML document", kNoTable};
    }
    return std::nullopt;
}

std::optional<Foreign> of_json(std::string_view head) {
    const std::string_view text = without_white_space_in_front(head);
    if (!text.starts_with('{') && !text.starts_with('[')) {
        return std::nullopt;
    }
    const std::string_view inside = without_white_space_in_front(text.substr(1));
    // A header may open with "[1]", as R prints it.
    if (inside.starts_with('"') || (text.front() == '[' && inside.starts_with('[')) ||
        (text.front() == '[' && inside.starts_with('{'))) {
        // As pandas writes columns, index and values apart.
        const bool is_split = inside.starts_with("\"columns\"");
        return Foreign{"a JSON document",
                       is_split ? "write its table as text (in Python: pandas.read_json(\"FILE\", "
                                  "orient=\"split\").to_csv(\"matrix.tsv\", sep=\"\\t\"))"
                                : "write its table as text (in Python: pandas.read_json(\"FILE\")"
                                  ".to_csv(\"matrix.tsv\", sep=\"\\t\"))"};
    }
    return std::nullopt;
}

bool is_letters(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '*' || c == '-' ||
               c == '\r';
    });
}

/// Sequences: a line of a name, then one of letters alone.
std::optional<Foreign> of_sequences(std::string_view head) {
    if (!head.starts_with('>') && !head.starts_with('@')) {
        return std::nullopt;
    }
    const std::size_t first_end = head.find('\n');
    if (first_end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view below = head.substr(first_end + 1);
    if (!is_letters(below.substr(0, below.find('\n')))) {
        return std::nullopt;
    }
    return head.front() == '>' ? Foreign{"a file of sequences (FASTA)", kQuantifyFirst}
                               : Foreign{"a file of reads (FASTQ)", kQuantifyFirst};
}

/// UTF-16 without a mark in front: every second byte of plain ASCII is then zero.
std::optional<Foreign> of_unmarked_utf16(std::string_view head) {
    constexpr std::size_t kLookedAt = 8;
    if (head.size() < kLookedAt) {
        return std::nullopt;
    }
    const auto is_zero_at = [head](std::size_t i) { return head[i] == '\0'; };
    bool even = true;
    bool odd = true;
    for (std::size_t i = 0; i < kLookedAt; i += 2) {
        even = even && is_zero_at(i) && !is_zero_at(i + 1);
        odd = odd && !is_zero_at(i) && is_zero_at(i + 1);
    }
    if (!even && !odd) {
        return std::nullopt;
    }
    return Foreign{"UTF-16 text", "save it as UTF-8 or plain ASCII (iconv -f UTF-16 -t UTF-8)"};
}

}  // namespace

bool is_workbook(std::string_view head) {
    // Whatever comes first in the archive, the parts of a workbook lie in this folder.
    return head.starts_with(kZip) && holds(head, "xl/");
}

std::string foreign_format(std::string_view head) {
    for (const auto recognise :
         {by_first_bytes, of_zip, of_tar, of_tags, of_json, of_sequences, of_unmarked_utf16}) {
        if (const std::optional<Foreign> format = recognise(head)) {
            return "this is " + std::string(format->what) + ": " + std::string(format->cure);
        }
    }
    return "";
}

}  // namespace ovik
