"""Excel workbooks of kinds.toml, as spreadsheet programs write them."""

from xml.sax.saxutils import escape, quoteattr

NAMESPACE = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
RELATIONS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
DATE_STYLE = 1


def place(row, column):
    return f"{chr(ord('A') + column)}{row + 1}"


class Sheet:
    """Rows of cells: numbers as text in a Number, texts, None for empty cells. One column may be hidden."""

    def __init__(self, name, rows, state="visible", hidden=None):
        self.name = name
        self.rows = rows
        self.state = state
        self.hidden = hidden


class Number(str):
    """A number by its digits."""


class Day(str):
    """A date by its number, shown as day and month."""


class Error(str):
    """An error such as #DIV/0!."""


class Truth(str):
    """Whether something holds: "0" or "1"."""


class Formula(str):
    """A formula that nobody has calculated."""


def cell_xml(cell, where, strings, prefix):
    def tags(attributes, inside):
        return f"<{prefix}c r=\"{where}\"{attributes}>{inside}</{prefix}c>"

    def value(text):
        return f"<{prefix}v>{escape(text)}</{prefix}v>"

    if isinstance(cell, Number):
        return tags("", value(cell))
    if isinstance(cell, Day):
        return tags(f' s="{DATE_STYLE}"', value(cell))
    if isinstance(cell, Error):
        return tags(' t="e"', value(cell))
    if isinstance(cell, Truth):
        return tags(' t="b"', value(cell))
    if isinstance(cell, Formula):
        return tags("", f"<{prefix}f>{escape(cell)}</{prefix}f>")
    return tags(' t="s"', value(str(strings.setdefault(cell, len(strings)))))


def sheet_xml(sheet, strings, prefix):
    lines = []
    for n, row in enumerate(sheet.rows):
        cells = "".join(cell_xml(cell, place(n, d), strings, prefix)
                        for d, cell in enumerate(row) if cell is not None)
        if cells:
            lines.append(f"<{prefix}row r=\"{n + 1}\">{cells}</{prefix}row>")
    space = f'xmlns:{prefix[:-1]}="{NAMESPACE}"' if prefix else f'xmlns="{NAMESPACE}"'
    columns = "" if sheet.hidden is None else (
        f'<{prefix}cols><{prefix}col min="{sheet.hidden}" max="{sheet.hidden}" hidden="1"/></{prefix}cols>')
    return (f"{HEAD}<{prefix}worksheet {space}>{columns}<{prefix}sheetData>{''.join(lines)}"
            f"</{prefix}sheetData></{prefix}worksheet>")


def parts_of(sheets, prefix=""):
    """The parts of a workbook by name.

    prefix  in front of every tag of the sheets, as some programs write them
    """
    strings = {}
    parts = {"[Content_Types].xml": f"{HEAD}<Types/>"}
    listed, relations = "", ""
    for i, sheet in enumerate(sheets, 1):
        parts[f"xl/worksheets/sheet{i}.xml"] = sheet_xml(sheet, strings, prefix)
        listed += (f'<sheet name={quoteattr(sheet.name)} sheetId="{i}" state="{sheet.state}" '
                   f'r:id="rId{i}"/>')
        relations += (f'<Relationship Id="rId{i}" Type="{RELATIONS}/worksheet" '
                      f'Target="worksheets/sheet{i}.xml"/>')
    parts["xl/workbook.xml"] = (
        f'{HEAD}<workbook xmlns="{NAMESPACE}" xmlns:r="{RELATIONS}"><sheets>{listed}</sheets></workbook>')
    parts["xl/_rels/workbook.xml.rels"] = f"{HEAD}<Relationships>{relations}</Relationships>"
    texts = "".join(f"<si><t xml:space=\"preserve\">{escape(text)}</t></si>" for text in strings)
    parts["xl/sharedStrings.xml"] = f'{HEAD}<sst xmlns="{NAMESPACE}">{texts}</sst>'
    parts["xl/styles.xml"] = (
        f'{HEAD}<styleSheet xmlns="{NAMESPACE}"><cellXfs><xf numFmtId="0"/><xf numFmtId="16"/></cellXfs>'
        '</styleSheet>')
    return parts


def rows_of(text):
    """The rows of a plain table."""
    head, *rows = [line.split("\t") for line in text.splitlines()]
    return [head] + [[row[0], *map(Number, row[1:])] for row in rows]


def in_rows(text):
    """The rows of a plain table without its head, all of them texts."""
    return [line.split("\t") for line in text.splitlines()[1:]]


def workbooks(text):
    """The parts of each workbook by file name.

    text  of a plain table
    """
    table = rows_of(text)

    def changed(row, column, cell):
        rows = [list(cells) for cells in table]
        rows[row][column] = cell
        return rows

    notes = Sheet("read me", [["Expression in chemostats"], ["see sheet 2"]])
    values = Sheet("values", table)
    commas = [table[0]] + [[text.replace(".", ",") for text in row] for row in in_rows(text)]
    in_strings = [table[0]] + in_rows(text)
    october_first = Day("45566")
    return {
        "sheet.xlsx": parts_of([values]),
        "prefixed_tags.xlsx": parts_of([values], "x:"),
        "macros.xlsm": parts_of([values]),
        "two_sheets.xlsx": parts_of([values, notes]),
        "notes_first.xlsx": parts_of([notes, values]),
        "hidden_sheet.xlsx": parts_of([Sheet("old", rows_of(text)[:4], "hidden"), values]),
        "numbers_as_text.xlsx": parts_of([Sheet("values", in_strings)]),
        "texts_with_commas.xlsx": parts_of([Sheet("values", commas)]),
        "titled.xlsx": parts_of([Sheet("Table S1", [["Table S1. Expression in chemostats"], [], *table])]),
        "date_for_a_value.xlsx": parts_of([Sheet("values", changed(3, 2, october_first))]),
        "truth.xlsx": parts_of([Sheet("values", changed(3, 2, Truth("1")))]),
        "empty_cells.xlsx": parts_of([Sheet("values", [
            [None if (n, d) in ((2, 2), (5, 5), (7, 1)) else cell for d, cell in enumerate(row)]
            for n, row in enumerate(table)])]),
        "footnote.xlsx": parts_of([Sheet("values", [*table, [None, "Note: values are log2 ratios"]])]),
        "errors.xlsx": parts_of([Sheet("values", changed(2, 2, Error("#DIV/0!")))]),
        "date_for_a_gene.xlsx": parts_of([Sheet("values", changed(3, 0, october_first))]),
        "errors_for_names.xlsx": parts_of([Sheet("values", [
            *table[:4], [Error("#REF!"), *table[1][1:]], *table[4:]])]),
        "hidden_column.xlsx": parts_of([Sheet("values", table, hidden=3)]),
        "uncalculated.xlsx": parts_of([Sheet("values", changed(3, 2, Formula("LOG(B4,2)")))]),
        "empty_sheet.xlsx": parts_of([Sheet("Sheet1", [])]),
        "binary.xlsb": {"[Content_Types].xml": "<Types/>", "xl/workbook.bin": "\x83\x01"},
    }
