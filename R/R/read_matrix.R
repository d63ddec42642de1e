# Matrix files, read by the library as the command reads them.

read_matrix <- function(
  file,
  delimiter = NULL,
  decimal = NULL,
  header = TRUE,
  names = TRUE,
  names_column = NULL,
  skip_columns = NULL,
  na = NULL,
  missing = NULL,
  sheet = NULL,
  row_names = NULL,
  log1p = FALSE,
  center = NULL,
  scale = FALSE,
  transpose = FALSE
) {
  form <- list(
    delimiter = checked_delimiter(delimiter),
    decimal = checked_choice("decimal", decimal, c(".", ",")),
    header = checked_flag("header", header),
    names = checked_flag("names", names),
    names_column = checked_columns("names_column", names_column, 1),
    skip_columns = checked_columns("skip_columns", skip_columns),
    na = checked_signs(na),
    missing = checked_choice("missing", missing, c("zero", "row-mean", "column-mean", "drop", "error")),
    sheet = if (!is.null(sheet)) checked_text("sheet", sheet, "the name of a sheet"),
    row_names = if (!is.null(row_names)) checked_file("row_names", row_names),
    log1p = identical(log1p, "portable") || checked_flag("log1p", log1p),
    is_portable = identical(log1p, "portable"),
    center = checked_choice("center", center, c("rows", "columns")),
    scale = checked_flag("scale", scale),
    transpose = checked_flag("transpose", transpose)
  )
  told(.Call(C_read_matrix, checked_file("file", file), form))
}

# The matrix of what was read, once the user knows what there is to say of it.
told <- function(read) {
  # Longer messages would lose their end, which says what to do.
  before <- options(warning.length = 8170)
  on.exit(options(before))
  for (text in printable(read$notes)) message(text)
  for (text in printable(read$warnings)) warning(text, call. = FALSE)
  if (nzchar(read$refusal)) stop(printable(read$refusal), call. = FALSE)
  columns <- read$column_names
  matrix <- read$values
  dimnames(matrix) <- list(as_in_file(read$row_names), if (length(columns)) as_in_file(columns))
  matrix
}

# Texts of a file need not be UTF-8.
printable <- function(texts) iconv(texts, "UTF-8", "UTF-8", sub = "byte")

as_in_file <- function(names) {
  Encoding(names)[!validUTF8(names)] <- "unknown"
  names
}

is_one_text <- function(value) is.character(value) && length(value) == 1 && !is.na(value) && nzchar(value)

checked_text <- function(name, value, requirement) {
  if (!is_one_text(value)) stop(sprintf("%s should be %s, not %s", name, requirement, shown(value)), call. = FALSE)
  value
}

# Standard input is R's own.
checked_file <- function(name, value) {
  if (!is_one_text(value) || value == "-") {
    stop(sprintf("%s should be the name of a file, not %s", name, shown(value)), call. = FALSE)
  }
  path.expand(value)
}

checked_choice <- function(name, value, choices) {
  if (!is.null(value) && !(is_one_text(value) && value %in% choices)) {
    listed <- paste0("\"", choices, "\"", collapse = ", ")
    stop(sprintf("%s should be NULL or one of %s, not %s", name, listed, shown(value)), call. = FALSE)
  }
  value
}

checked_flag <- function(name, value) {
  check_flag(name, value)
  value
}

checked_delimiter <- function(value) {
  is_one_character <- is_one_text(value) && nchar(value, "bytes") == 1 && !value %in% c("\r", "\n", "\"") &&
    charToRaw(value) < as.raw(0x80)
  if (!is.null(value) && !is_one_character) {
    stop(sprintf("delimiter should be one character, such as \"\\t\", not %s", shown(value)), call. = FALSE)
  }
  value
}

# Columns by header or by number, as texts; NULL stands for one that is not given.
checked_columns <- function(name, value, most = Inf) {
  if (is.null(value)) return(if (most == 1) NULL else character())
  is_number <- is.numeric(value) && all(is.finite(value) & value >= 1 & value <= 1e9 & value == round(value))
  if (!(is_number || (is.character(value) && !anyNA(value))) || length(value) > most) {
    refuse(
      sprintf("%s should be headers or numbers of columns, not %s", name, shown(value)),
      if (most == 1) "Give one of them." else "Columns count from 1, which is mostly that of the names."
    )
  }
  if (is.numeric(value)) sprintf("#%d", as.integer(value)) else value
}

checked_signs <- function(value) {
  if (is.null(value)) return(character())
  if (!is.character(value) || anyNA(value)) {
    refuse(
      sprintf("na should be texts as they stand in the file, not %s", shown(value)),
      "\"-999\" stands for a missing value where the file has -999, and not where it has -999.0."
    )
  }
  value
}
