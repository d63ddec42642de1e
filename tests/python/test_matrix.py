"""The matrix reader."""

import gzip
import io
import locale
import zipfile

import numpy as np
import pytest

import ovik

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
RELATIONS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
TEXT = "gene,a,b\nG1,1,2.5\nG2,-3,4e2\nG3,0,NA\n"


@pytest.fixture
def write(tmp_path):
    def write(content, name="m.csv"):
        path = tmp_path / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    return write


def test_text_gives_values_and_names(write):
    matrix = ovik.read_matrix(write(TEXT))
    assert matrix.values.dtype == np.float64
    assert matrix.values.flags.c_contiguous and matrix.values.flags.writeable
    assert np.array_equal(matrix.values, [[1, 2.5], [-3, 400], [0, np.nan]], equal_nan=True)
    assert matrix.row_names == ["G1", "G2", "G3"]
    assert matrix.column_names == ["a", "b"]
    values, row_names, column_names = matrix
    assert values is matrix.values and len(row_names) == 3 and len(column_names) == 2


def test_every_format_gives_the_same_matrix(write, tmp_path):
    expected = ovik.read_matrix(write(TEXT)).values
    np.save(tmp_path / "m.npy", expected)
    market = "%%MatrixMarket matrix array real general\n3 2\n1\n-3\n0\n2.5\n400\nNaN\n"
    packed = ovik.read_matrix(write(gzip.compress(TEXT.encode()), "m.csv.gz"))
    assert np.array_equal(packed.values, expected, equal_nan=True)
    for path in (tmp_path / "m.npy", str(write(market, "m.mtx"))):
        with pytest.warns(ovik.MatrixNote, match='row_names="FILE" gives them names'):
            matrix = ovik.read_matrix(path)
        assert np.array_equal(matrix.values, expected, equal_nan=True)
    assert matrix.row_names == ["1", "2", "3"]
    assert matrix.column_names == []


@pytest.mark.filterwarnings("error")
def test_names_of_an_array_may_come_from_a_file(write, tmp_path):
    np.save(tmp_path / "m.npy", [[1.0, 2], [3, 4], [5, 7]])
    names = write("CDC28\nTUB1\nPGK1\n", "names.txt")
    assert ovik.read_matrix(tmp_path / "m.npy", row_names=names).row_names == ["CDC28", "TUB1", "PGK1"]
    with pytest.raises(FileNotFoundError):
        ovik.read_matrix(tmp_path / "m.npy", row_names=tmp_path / "none.txt")


@pytest.mark.parametrize("missing, last_row", [
    ("zero", [0, 0]), ("row-mean", [0, 0]), ("column-mean", [0, 201.25]),
])
def test_missing_values_are_filled_in_as_asked(write, missing, last_row):
    assert ovik.read_matrix(write(TEXT), missing=missing).values[2].tolist() == last_row


def test_rows_with_missing_values_are_left_out_as_asked(write):
    matrix = ovik.read_matrix(write(TEXT + "G4,5,6\n"), missing="drop")
    assert matrix.values.tolist() == [[1, 2.5], [-3, 400], [5, 6]]
    assert matrix.row_names == ["G1", "G2", "G4"]


def test_missing_values_are_refused_as_asked(write):
    with pytest.raises(ValueError, match='1 of 6 values is missing.*\n.*line 4: row "G3"'):
        ovik.read_matrix(write(TEXT), missing="error")
    with pytest.raises(ValueError, match='should be None, "zero", .* not "mean"'):
        ovik.read_matrix(write(TEXT), missing="mean")


def test_delimiter_can_be_given(write):
    path = write("gene|a\nG1|1\nG2|2\nG3|3\n")
    with pytest.raises(ValueError, match="found no numbers"):
        ovik.read_matrix(path)
    assert ovik.read_matrix(path, "|").values.tolist() == [[1], [2], [3]]


@pytest.mark.parametrize("delimiter", ["", "ab", "\n", '"', "é", b",", 3])
def test_delimiter_is_one_character(write, delimiter):
    with pytest.raises(ValueError, match="delimiter should be one character"):
        ovik.read_matrix(write(TEXT), delimiter)


def test_odd_names_are_warned_of(write):
    path = write("g,a\nG1,1\nG2,2\nG2,3\n")
    with pytest.warns(UserWarning, match="1 row repeats the name") as warned:
        assert ovik.read_matrix(path).values.tolist() == [[1], [2], [3]]
    assert {warning.filename for warning in warned} == {__file__}
    assert not any(issubclass(warning.category, ovik.MatrixNote) for warning in warned)


@pytest.mark.parametrize("content, note", [
    ("Name\tLength\tEffectiveLength\tTPM\tNumReads\n"
     "A\t9\t8\t1.5\t4\nB\t9\t8\t2\t7\nC\t9\t8\t3\t9\n", "Salmon"),
    ("gene,a,b\n850298,1,2\n851234,3,4\n852345,5,7\n", "the names of the rows are numbers"),
    ("# by hand\ngene,a,b\nG1,1,2\nG2,3,4\nG3,5,7\n", "line 1 is above the header"),
])
def test_how_a_file_is_taken_is_noted(write, content, note):
    with pytest.warns(ovik.MatrixNote, match=note) as warned:
        ovik.read_matrix(write(content))
    assert {warning.filename for warning in warned} == {__file__}


@pytest.mark.parametrize("content, cure", [
    ("g,a\nG1,1\nG2,ND\nG3,3\n", 'na="ND"'),
    ("g;a\nG1;1.000,5\nG2;2\nG3;3\n", "Take the points out of the numbers"),
    ("g;a\nG1;0,5\nG2;1,5\nG3;3\n", 'decimal="," reads them'),
    ("g,note,b\nG1,x,1\nG2,y,2\nG3,3 z,3\n", 'skip_columns=["note"]'),
    ("g,note,b\nG1,x,1\nG2,y,2\nG3,3 z,3\n", 'names_column="note"'),
    ("G0,0.5,-1\nG1,1,2\nG2,2,1\n", "header=False"),
    ("a,b\n0.5,1\n0.25,2\n0.5,3\n", "names=False"),
    ("g\ta\nG1\t1\nG2\t2\nG3\t3\n", 'delimiter="\\t"'),
])
def test_text_is_no_value(write, content, cure):
    delimiter = "," if "\t" in content else None
    with pytest.raises(ValueError) as caught:
        ovik.read_matrix(write(content), delimiter)
    assert cure in str(caught.value)


@pytest.mark.filterwarnings("ignore::ovik.MatrixNote")
@pytest.mark.parametrize("content, options", [
    ("gene;a;b\nG1;1;2,5\nG2;-3;4e2\nG3;0;NA\n", {"decimal": ","}),
    ("G1,1,2.5\nG2,-3,4e2\nG3,0,NA\n", {"header": False}),
    ("gene,a,x,b\nG1,1,x,2.5\nG2,-3,1 y,4e2\nG3,0,z,NA\n", {"skip_columns": "x"}),
    ("gene,a,x,b\nG1,1,x,2.5\nG2,-3,1 y,4e2\nG3,0,z,NA\n", {"skip_columns": [3]}),
    ("id,gene,a,b\n7,G1,1,2.5\n8,G2,-3,4e2\n9,G3,0,NA\n", {"names_column": "gene"}),
    ("gene,a,b\nG1,1,2.5\nG2,-3,4e2\nG3,0,ND\n", {"na": "ND"}),
    ("gene;a;b\nG1;1;2,5\nG2;-3;4e2\nG3;0;n.d.\n", {"decimal": ",", "na": "n.d."}),
    ('"gene","a","b"\n"G1",1,2.5\n"G2","-3",4e2\nG3,"0",""\n', {}),
    ("# a note\ngene,a,b\nG1,1,2.5\nG2,-3,4e2\nG3,0,NA\n", {}),
])
def test_text_is_read_as_the_arguments_say(write, content, options):
    matrix = ovik.read_matrix(write(content), **options)
    assert np.array_equal(matrix.values, [[1, 2.5], [-3, 400], [0, np.nan]], equal_nan=True)
    assert matrix.row_names == ["G1", "G2", "G3"]
    assert matrix.column_names == ([] if "header" in options else ["a", "b"])


@pytest.mark.filterwarnings("ignore::ovik.MatrixNote")
def test_a_number_is_a_field_where_headers_are_numbers_too(write):
    matrix = ovik.read_matrix(write("gene,3,2,1\nG1,1,7,2\nG2,3,5,4\nG3,5,6,8\n"), skip_columns=3)
    assert matrix.column_names == ["3", "1"]


def test_values_are_transformed_in_the_order_of_the_options(write):
    text = "gene,a,b,c\nG1,1,2.5,0\nG2,3,400,7\nG3,0,5,2\nG4,9,1,6\n"
    expected = np.log1p(ovik.read_matrix(write(text)).values)
    expected -= expected.mean(axis=1, keepdims=True)
    expected /= expected.std(axis=0, ddof=1)
    matrix = ovik.read_matrix(write(text), log1p=True, center="rows", scale=True)
    assert matrix.values == pytest.approx(expected, rel=1e-14)


def test_logarithms_are_portable_where_that_is_wanted(write):
    path = write("gene,a,b,c\nG1,1,2.5,0\nG2,3,400,7\nG3,0,5,2\nG4,9,1,6\n")
    portable = ovik.read_matrix(path, log1p="portable").values
    np.testing.assert_array_max_ulp(portable, np.log1p(ovik.read_matrix(path).values), maxulp=1)
    with pytest.raises(ValueError, match='log1p should be True, False or "portable", not "rounded"'):
        ovik.read_matrix(path, log1p="rounded")


def test_columns_become_rows_at_last(write):
    text = "gene,a,b,c\nG1,1,2.5,0\nG2,3,400,7\nG3,0,5,2\n"
    expected = ovik.read_matrix(write(text), center="rows")
    matrix = ovik.read_matrix(write(text), center="rows", transpose=True)
    np.testing.assert_array_equal(matrix.values, expected.values.T)
    assert matrix.row_names == ["a", "b", "c"]
    assert matrix.column_names == ["G1", "G2", "G3"]
    with pytest.raises(ValueError, match="transpose=True makes points of the columns"):
        ovik.read_matrix(write("G1,1,2,3\nG2,4,5,7\n"), transpose=True, header=False)


@pytest.mark.parametrize("options, message", [
    ({"log1p": True}, 'row "G2" has a value below 0 in column "a"'),
    ({"scale": True, "missing": None}, "values are missing"),
    ({"center": "x"}, "center should be None, 'rows' or 'columns', not 'x'"),
])
def test_values_that_cannot_be_transformed_are_refused(write, options, message):
    with pytest.raises(ValueError, match=message):
        ovik.read_matrix(write(TEXT), **{"missing": "zero", **options})


def test_sheet_of_a_workbook_is_chosen(write):
    def sheet(cells):
        rows = "".join(
            "<row>" + "".join(f"<c t=\"{kind}\"><v>{value}</v></c>" for kind, value in row) + "</row>"
            for row in cells
        )
        return f'<worksheet xmlns="{MAIN}"><sheetData>{rows}</sheetData></worksheet>'

    def table(first):
        return [[("str", "gene"), ("str", "a")]] + [
            [("str", f"G{n}"), ("n", first + n)] for n in range(3)
        ]

    packed = io.BytesIO()
    with zipfile.ZipFile(packed, "w") as archive:
        archive.writestr("xl/workbook.xml", f'<workbook xmlns="{MAIN}" xmlns:r="{RELATIONS}"><sheets>'
                         '<sheet name="one" sheetId="1" r:id="r1"/>'
                         '<sheet name="two" sheetId="2" r:id="r2"/></sheets></workbook>')
        archive.writestr("xl/_rels/workbook.xml.rels",
                         '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
                         + "".join(f'<Relationship Id="r{n}" Type="{RELATIONS}/worksheet" Target="{n}.xml"/>'
                                   for n in (1, 2)) + "</Relationships>")
        archive.writestr("xl/1.xml", sheet(table(5)))
        archive.writestr("xl/2.xml", sheet(table(8)))
    workbook = write(packed.getvalue(), "m.xlsx")
    with pytest.warns(ovik.MatrixNote, match='read is the first of 2 sheets, "one"; sheet reads another'):
        assert ovik.read_matrix(workbook).values.tolist() == [[5], [6], [7]]
    assert ovik.read_matrix(workbook, sheet="two").values.tolist() == [[8], [9], [10]]
    with pytest.raises(ValueError, match="three"):
        ovik.read_matrix(workbook, sheet="three")


def test_rows_without_names_have_numbers(write):
    with pytest.warns(ovik.MatrixNote, match="its rows have no names"):
        matrix = ovik.read_matrix(write("a,b\n1,2\n3,4\n5,7\n"), names=False)
    assert matrix.values.tolist() == [[1, 2], [3, 4], [5, 7]]
    assert matrix.row_names == ["1", "2", "3"]


@pytest.mark.parametrize("options, message", [
    ({"decimal": ";"}, "decimal should be"),
    ({"skip_columns": [True]}, "a column should be"),
    ({"skip_columns": "none"}, 'there is no column "none"'),
    ({"skip_columns": 2.5}, "a column should be"),
    ({"na": -999}, 'na should be texts as they stand in the file, not -999\n"-999" stands for'),
    ({"na": ["ND", -999.0]}, "na should be texts .* not -999.0"),
])
def test_arguments_that_fit_no_text(write, options, message):
    with pytest.raises(ValueError, match=message):
        ovik.read_matrix(write(TEXT), **options)


def test_files_that_cannot_be_opened(tmp_path):
    with pytest.raises(FileNotFoundError):
        ovik.read_matrix(tmp_path / "none.csv")
    with pytest.raises(IsADirectoryError):
        ovik.read_matrix(tmp_path)


@pytest.mark.parametrize("content, message", [
    ("g,a\nG1,1\nG2,1,2\nG3,1\n", ':3: row "G2" has 2 values, but the first row has 1'),
    ("g,a\nG1,1\nG2,2\n", "has 2 rows, and an embedding needs at least 3"),
    ("g,a\nG1,1\nG2,inf\nG3,2\n", "which is not a finite number"),
    ("", "the file is empty"),
    ("g,a\nG1,1\nG2,1\0\nG3,2\n", "NUL"),
    (gzip.compress(TEXT.encode())[:-9], "m.csv"),
    (b"\x93NUMPY\x01\x00", "m.csv"),
])
def test_what_is_no_matrix(write, content, message):
    with pytest.raises(ValueError) as caught:
        ovik.read_matrix(write(content))
    assert message in str(caught.value)


def test_names_have_an_encoding(write):
    path = write("g,a\nG\xe9,1\nH,2\nI,3\n".encode("latin-1"))
    with pytest.raises(UnicodeDecodeError):
        ovik.read_matrix(path)
    assert ovik.read_matrix(path, encoding="latin-1").row_names == ["G\xe9", "H", "I"]


def test_messages_hold_whatever_the_file_holds(write):
    with pytest.raises(ValueError, match='row "G\ufffd" has 2 values'):
        ovik.read_matrix(write(b"g,a\nF,1\nG\xe9,1,2\nH,2\n"))


def test_decimal_commas_of_the_locale_are_refused(write, monkeypatch):
    monkeypatch.setattr(locale, "localeconv", lambda: {"decimal_point": ","})
    with pytest.raises(RuntimeError, match="has no decimal point"):
        ovik.read_matrix(write(TEXT))


def test_path_need_not_be_utf_8(write):
    assert ovik.read_matrix(write(TEXT, "m\udce9.csv")).row_names == ["G1", "G2", "G3"]
