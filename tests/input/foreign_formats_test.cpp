#include "input/foreign_formats.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

template <std::size_t Size>
std::string bytes(const char (&text)[Size]) {
    return {text, Size - 1};
}

/// The head of a zip archive whose first file has this name and this content, not packed.
std::string zip(const std::string& name, const std::string& content = "") {
    std::string head = bytes("PK\x03\x04\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0");
    head += static_cast<char>(name.size());
    head += bytes("\0\0\0");
    return head + name + content;
}

std::string utf16(const std::string& text, bool little) {
    std::string wide;
    for (const char c : text) {
        wide += little ? std::string{c, '\0'} : std::string{'\0', c};
    }
    return wide;
}

TEST(ForeignFormat, IsNamedWithTheCure) {
    const struct {
        std::string head;
        const char* what;
        const char* cure;
    } kCases[] = {
        {bytes("PAR1\x15\x04\x15"), "a Parquet file:", "pandas.read_parquet"},
        {bytes("ARROW1\0\0"), "a Feather or Arrow file:", "pandas.read_feather"},
        {bytes("FEA1\0\0\0\0"), "a Feather file:", "pandas.read_feather"},
        {bytes("Obj\x01"), "an Avro file:", "to_csv"},
        {bytes("\x80\x02}q"), "a Python pickle:", "to_csv"},
        {bytes("\x80\x05\x95"), "a Python pickle:", "to_csv"},
        {bytes("X\n\0\0\0\3\0"), "an R object (.rds):", "write.table"},
        {"RDX3\nX\n", "an R workspace (.RData):", "write.table"},
        {bytes("\x89HDF\r\n\x1a\n\0"), "an HDF5 file", "read_h5ad"},
        {bytes("CDF\x01\0"), "a NetCDF file:", "table of numbers"},
        {"MATLAB 5.0 MAT-file, Platform", "a MATLAB file:", "writematrix"},
        {bytes("SQLite format 3\0\x10"), "an SQLite database:", "sqlite3 -header"},
        {"$FL2@(#) SPSS", "an SPSS file:", "haven"},
        {"<stata_dta><header>", "a Stata file:", "haven"},
        {"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1",
         "an Excel workbook of the old kind (.xls):",
         "Save As"},
        {bytes("\xfd"
               "7zXZ\0"),
         "packed by xz: unpack it first (xz -d)",
         "gzip"},
        {"BZh91AY", "packed by bzip2: unpack it first (bzip2 -d)", "gzip"},
        {"\x28\xb5\x2f\xfd", "packed by zstd: unpack it first (zstd -d)", "gzip"},
        {"\x04\x22\x4d\x18", "packed by lz4: unpack it first (lz4 -d)", "gzip"},
        {"\x1f\x9d\x90", "packed by compress: unpack it first", "gzip"},
        {"7z\xbc\xaf\x27\x1c", "a 7-Zip archive:", "unpack it"},
        {"Rar!\x1a\x07", "a RAR archive:", "unpack it"},
        {bytes("\xff\xfe\0\0h\0\0\0"), "UTF-32 text:", "UTF-8"},
        {"\xff\xfeh", "UTF-16 text (Excel's", "UTF-8"},
        {"\xfe\xffh", "UTF-16 text: save it as UTF-8", "iconv"},
        {utf16("gene\ta", true), "UTF-16 text:", "iconv"},
        {utf16("gene\ta", false), "UTF-16 text:", "iconv"},
        {"%PDF-1.7", "a PDF document:", "table of numbers"},
        {"%!PS-Adobe", "a PostScript document:", "table of numbers"},
        {"{\\rtf1\\ansi", "a text document (RTF):", "table of numbers"},
        {"\x89PNG\r\n\x1a\n", "a picture (PNG):", "table of numbers"},
        {"\xff\xd8\xff\xe0", "a picture (JPEG):", "table of numbers"},
        {"GIF89a", "a picture (GIF):", "table of numbers"},
        {bytes("II*\0"), "a picture (TIFF):", "table of numbers"},
        {bytes("MM\0*"), "a picture (TIFF):", "table of numbers"},
        {"\x7f"
         "ELF",
         "a program:",
         "table of numbers"},
        {bytes("BAM\x01"), "a file of aligned reads (BAM):", "genes by samples"},
        {"@HD\tVN:1.6\n", "a file of aligned reads (SAM):", "genes by samples"},
        {"@SQ\tSN:chrI\n", "a file of aligned reads (SAM):", "genes by samples"},
        {"##fileformat=VCFv4.2\n", "a file of variants (VCF):", "genes by samples"},
        {"##gff-version 3\n", "an annotation of a genome (GFF):", "genes by samples"},
        {"[CEL]\nVersion=3\n", "a scan of an array (CEL):", "genes by samples"},
        {">chrI\nCCACACC\n", "a file of sequences (FASTA):", "genes by samples"},
        {"@read1\nACGTN\n+\n", "a file of reads (FASTQ):", "genes by samples"},
        {"OVIKCKPT\2", "a checkpoint of ovik-tsne:", "--resume"},
        {zip("mimetype", "application/vnd.oasis.opendocument.spreadsheet"),
         "an OpenDocument spreadsheet (.ods):",
         "Save As"},
        {zip("mimetype", "application/vnd.oasis.opendocument.text"), "a text document", "table"},
        {zip("xl/workbook.xml"), "an Excel workbook (.xlsx):", "Save As"},
        {zip("word/document.xml"), "a text document", "table of numbers"},
        {zip("arr_0.npy"), "an archive of NumPy arrays (.npz):", "numpy.save"},
        {zip("matrix.tsv"), "a zip archive:", "unpack it"},
        {std::string("matrix.tsv") + std::string(247, '\0') + "ustar", "a tar archive:", "unpack"},
        {"<!DOCTYPE html>\n<html>", "a web page (HTML):", "fetch the file itself"},
        {"\xef\xbb\xbf \r\n<HTML><BODY>", "a web page (HTML):", "tab-separated"},
        {"<table><tr><td>", "a web page (HTML):", "tab-separated"},
        {"<html xmlns:x=\"urn:schemas-microsoft-com:office:excel\">",
         "a web page that Excel opens (an .xls of HTML):",
         "Save As"},
        {"<?xml version=\"1.0\"?>\n<?mso-application progid=\"Excel.Sheet\"?>",
         "an Excel workbook as XML:",
         "Save As"},
        {"<?xml version=\"1.0\"?><svg>", "a picture (SVG):", "table of numbers"},
        {"<?xml version=\"1.0\"?><MINiML>", "an XML document:", "table of numbers"},
        {"{\"gene\": 1}", "a JSON document:", "pandas.read_json(\"FILE\")"},
        {"{\"columns\":[\"a\"],", "a JSON document:", "(\"FILE\", orient=\"split\").to_csv"},
        {"[\n  {\"gene\": 1}]", "a JSON document:", "pandas.read_json"},
        {"[[1, 2], [3, 4]]", "a JSON document:", "pandas.read_json"},
    };

    for (const auto& [head, what, cure] : kCases) {
        EXPECT_THAT(foreign_format(head), StartsWith(std::string("this is ") + what));
        EXPECT_THAT(foreign_format(head), HasSubstr(cure));
    }
}

TEST(ForeignFormat, IsNoneOfTextThatIsRead) {
    for (const char* const head : {"",
                                   "h\nG1\t1\n",
                                   "PK",
                                   "PK\t1",
                                   "BZ",
                                   "%%MatrixMarket",
                                   "\xef\xbb\xbfh",
                                   // Genes whose names are the first bytes of other formats.
                                   "PAR1\tORC1\tCDF1\n",
                                   "ARROW1\t1\n",
                                   "FEA1\t2\n",
                                   // As R, the shell and the field itself may begin a table.
                                   "[1] \"a\"\n",
                                   "[gene]\ta\n",
                                   "{gene}\ta\n",
                                   "<gene>\ta\nG1\t1\n",
                                   ">gene\ta\nG1\t1\n",
                                   "@gene\ta\nG1\t1\n",
                                   "@HDA1\ta\n",
                                   "##a remark\ngene\ta\n"}) {
        EXPECT_EQ(foreign_format(head), "") << head;
    }
}

TEST(Workbook, IsKnownByItsFolderWhateverComesFirst) {
    EXPECT_TRUE(is_workbook(zip("[Content_Types].xml", "...xl/workbook.xml")));
    EXPECT_TRUE(is_workbook(zip("xl/worksheets/sheet1.xml")));
    EXPECT_FALSE(is_workbook(zip("word/document.xml")));
    EXPECT_FALSE(is_workbook("xl/workbook.xml"));
}

}  // namespace
}  // namespace ovik
