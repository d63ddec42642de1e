# Matrix files, with the numbers that the command reads. R's own reading of decimal numbers differs in the
# last place now and then, 2.694577 being one, and maps of such numbers differ as a whole.

missing_signs <- c("", "na", "n/a", "#n/a", "nan", "null", "none", "-", "--", ".", "?")

read_matrix <- function(file, sep = "\t") {
  lines <- readLines(file, warn = FALSE)
  header <- scan(text = utils::head(lines, 1), what = "", sep = sep, quote = "\"", quiet = TRUE)
  fields <- read_fields(file, lines[-1], sep)
  values <- unlist(fields[-1], use.names = FALSE)
  numbers <- matrix(.Call(C_numbers_of, as.character(values)), nrow(fields))
  rownames(numbers) <- fields[[1]]
  colnames(numbers) <- column_names(file, header, ncol(numbers))
  refuse_text(file, numbers, values)
  numbers
}

# The rows as a data frame of texts.
read_fields <- function(file, lines, sep) {
  lines <- lines[!grepl("^(#|[[:space:]]*$)", lines, useBytes = TRUE)]
  if (length(lines) == 0) {
    refuse(sprintf("%s has no rows", file), "A header line stands above rows of a name and its values.")
  }
  tryCatch(
    utils::read.table(
      text = lines, sep = sep, quote = "\"", comment.char = "", colClasses = "character", na.strings = character(),
      fill = FALSE, strip.white = FALSE
    ),
    error = function(failure) {
      refuse(
        sprintf("%s: %s, not counting the header and lines that are skipped", file, conditionMessage(failure)),
        "Every row needs the same number of fields: check sep, and fill in what is missing."
      )
    }
  )
}

# The header may lack a name for the column of names, as files that R wrote do.
column_names <- function(file, header, count) {
  if (count == 0) {
    refuse(sprintf("%s has a single column", file), "Check sep, which stands between the values.")
  }
  if (!length(header) %in% c(count, count + 1)) {
    refuse(
      sprintf("%s: the first line has %d fields, and rows have %d", file, length(header), count + 1),
      "It should be a header with a name for each column."
    )
  }
  utils::tail(header, count)
}

refuse_text <- function(file, numbers, values) {
  text <- which(is.na(numbers) & !tolower(trimws(values)) %in% missing_signs)
  if (length(text) == 0) return(invisible())
  at <- arrayInd(text[1], dim(numbers))
  refuse(
    sprintf(
      "%s: row %s, column %s is \"%s\", which is not a number (%d such fields)", file,
      place(at[1], rownames(numbers)), place(at[2], colnames(numbers)), values[text[1]], length(text)
    ),
    "Take columns of text out, and write decimal points as points."
  )
}
