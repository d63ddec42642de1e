# Matrix files: they are read as the command reads them, and nothing but a number is taken for one.

file_of <- function(..., extension = ".tsv") {
  path <- tempfile(fileext = extension)
  writeLines(c(...), path)
  path
}

# Three genes and two samples, one value missing.
small <- function() {
  matrix(c(1, -3, 0, 2.5, 400, NaN), 3, dimnames = list(c("CDC28", "TUB1", "PGK1"), c("a", "b")))
}

test_that("numbers are the nearest to their texts, also where R reads others", {
  read <- read_matrix(file_of("gene\ta\tb", "g1\t2.694577\t3.960202", "g2\t 11.340198 \t-1e3", "g3\t1\t2"))
  expected <- matrix(c(0x1.58e7e62dc6e2bp+1, 0x1.6ae2e6ea85447p+3, 1, 0x1.fae7e62dc6e2bp+1, -1000, 2), 3)
  expect_identical(read, matrix(expected, 3, dimnames = list(c("g1", "g2", "g3"), c("a", "b"))))
})

test_that("the map of a file is the command's where R reads other numbers", {
  numbers <- sprintf("%d.%06d", 0:359 %% 20, (694577 + 7919 * 0:359 * 0:359) %% 1000000)
  numbers[c(1, 3, 8)] <- c("2.694577", "3.960202", "11.340198")
  rows <- apply(matrix(numbers, 90), 1, paste, collapse = "\t")
  path <- file_of("gene\ta\tb\tc\td", paste0("g", 1:90, "\t", rows))
  expected <- embed_by_command(path, "--perplexity", 10, "--max-iter", 400)
  expect_identical(bare(tsne(read_matrix(path), 10, max_iter = 400)$Y), expected)
})

test_that("a real matrix is read as R reads it, packed or not", {
  path <- project_file("data/brauer2008_chemostat.tsv")
  read <- read_matrix(path)
  expect_identical(read, as.matrix(read.delim(path, row.names = 1, quote = "", check.names = FALSE)))
  packed <- tempfile(fileext = ".tsv.gz")
  con <- gzfile(packed, "w")
  writeLines(readLines(path), con)
  close(con)
  expect_identical(read_matrix(packed), read)
})

test_that("a file without a header keeps its first row, and says how it is read", {
  path <- file_of("CDC28\t-1.24\t-0.28", "TUB1\t0.5\t0.25", "PGK1\t1\t2", "RPL3\t3\t-1")
  expect_error(read_matrix(path), "header = FALSE", fixed = TRUE)
  read <- read_matrix(path, header = FALSE)
  expect_identical(rownames(read), c("CDC28", "TUB1", "PGK1", "RPL3"))
  expect_identical(read["CDC28", ], c(-1.24, -0.28))
  expect_null(colnames(read))
})

test_that("known kinds of tables are known, and a message says so", {
  path <- file_of(
    "Name\tLength\tEffectiveLength\tTPM\tNumReads",
    "YAL001C\t3483\t3234\t12.5\t408", "YAL002W\t3825\t3576\t9.25\t331", "YAL003W\t621\t372\t3010\t11000"
  )
  notes <- capture_messages(read <- read_matrix(path))
  expect_match(notes[1], "Salmon")
  expected <- matrix(c(12.5, 9.25, 3010), 3, dimnames = list(c("YAL001C", "YAL002W", "YAL003W"), "TPM"))
  expect_identical(read, expected)
})

test_that("rows without names are not called by their values", {
  path <- file_of("a\tb\tc", "0.5\t1\t2", "0.25\t3\t4", "0.5\t5\t7")
  expect_error(read_matrix(path), "names = FALSE", fixed = TRUE)
  read <- suppressMessages(read_matrix(path, names = FALSE))
  expected <- matrix(c(0.5, 0.25, 0.5, 1, 3, 5, 2, 4, 7), 3, dimnames = list(c("1", "2", "3"), c("a", "b", "c")))
  expect_identical(read, expected)
})

test_that("the arguments say how text is read", {
  rows <- c("CDC28,1,2.5", "TUB1,-3,4e2", "PGK1,0,NA")
  expect_identical(read_matrix(file_of("gene,a,b", rows)), small())
  expect_identical(read_matrix(file_of(gsub(",", "|", c("gene,a,b", rows))), "|"), small())
  expect_identical(
    read_matrix(file_of("gene;a;b", "CDC28;1;2,5", "TUB1;-3;4e2", "PGK1;0;NA"), decimal = ","), small()
  )
  expect_identical(read_matrix(file_of("gene,a,b", sub("NA", "ND", rows)), na = c("ND", "x")), small())
  described <- file_of("id,gene,x,a,b", paste0(c("p,", "q,", "r,"), sub(",", ",text,", rows)))
  expect_identical(suppressMessages(read_matrix(described, names_column = "gene", skip_columns = 3)), small())
  expect_identical(suppressMessages(read_matrix(described, names_column = 2, skip_columns = c("id", "x"))), small())
  numbered <- file_of("gene,3,2,1", "CDC28,1,7,2", "TUB1,3,5,4", "PGK1,5,6,8")
  expect_identical(colnames(suppressMessages(read_matrix(numbered, skip_columns = 3))), c("3", "1"))
})

test_that("arrays are read, with the names of a file", {
  path <- tempfile(fileext = ".npy")
  write_npy(small(), path)
  expect_message(read <- read_matrix(path), "row_names = \"FILE\" gives them names", fixed = TRUE)
  expect_identical(read, matrix(small(), 3, dimnames = list(c("1", "2", "3"), NULL)))
  expect_no_message(read <- read_matrix(path, row_names = file_of(rownames(small()))))
  expect_identical(rownames(read), rownames(small()))
})

test_that("missing values are NaN, which a fit refuses, or what is asked for", {
  signs <- c("", "NA", "n/a", "#N/A", "NaN", "NULL", "none", "-", "--", ".", "?")
  path <- file_of("gene\ta\tb", paste0("g", seq_along(signs), "\t", signs, "\t1"))
  read <- read_matrix(path)
  expect_true(all(is.nan(read[, 1])))
  expect_identical(unname(read[, 2]), rep(1, 11))
  expect_error(tsne(read, 2), "NaN in row 1 \\('g1'\\), column 1 \\('a'\\) \\(11 such values")
  expect_identical(unname(read_matrix(path, missing = "row-mean")[, 1]), rep(1, 11))
  expect_error(read_matrix(path, missing = "error"), "11 of 22 values are missing")
})

test_that("values are transformed in the order of the arguments", {
  path <- file_of("gene,a,b,c", "CDC28,1,2.5,0", "TUB1,3,400,7", "PGK1,0,5,2", "RPL3,9,1,6")
  expected <- log1p(read_matrix(path))
  expected <- expected - rowMeans(expected)
  expected <- sweep(expected, 2, apply(expected, 2, sd), "/")
  expect_equal(read_matrix(path, log1p = TRUE, center = "rows", scale = TRUE), expected, tolerance = 1e-14)
  expect_equal(read_matrix(path, log1p = "portable"), log1p(read_matrix(path)), tolerance = 1e-15)
  expect_error(read_matrix(path, log1p = "rounded"), "log1p should be")
})

test_that("columns become rows at last", {
  path <- file_of("gene,a,b,c", "CDC28,1,2.5,0", "TUB1,3,400,7", "PGK1,0,5,2")
  expect_identical(read_matrix(path, center = "rows", transpose = TRUE), t(read_matrix(path, center = "rows")))
})

test_that("quotes, comments, repeated names and a header of values alone are read", {
  path <- file_of("\"a, 1\",b", "\"ARG5,6\",\"1.5\",2", "", "# none", "\"5'\",3,4", "\"5'\",5,6")
  expect_warning(read <- read_matrix(path), "1 row repeats the name")
  expect_identical(read, matrix(c(1.5, 3, 5, 2, 4, 6), 3, dimnames = list(c("ARG5,6", "5'", "5'"), c("a, 1", "b"))))
})

test_that("text is refused with its place and the argument that is the cure", {
  described <- file_of("gene\tNAME\tb", "g1\tkinase\t1", "g2\t2-hydroxyacid\t2", "g3\tligase\t3")
  expect_error(read_matrix(described), "skip_columns = \"NAME\"", fixed = TRUE)
  twice <- file_of("gene\tNAME\tGO\tb", paste0("g", 1:3, "\tkinase\tcycle\t", 1:3))
  expect_error(read_matrix(twice), "skip_columns = c(\"NAME\", \"GO\")", fixed = TRUE)
  commas <- file_of("gene;a", "g1;1,5", "g2;2,5", "g3;3")
  expect_error(read_matrix(commas), "decimal = \",\" reads them", fixed = TRUE)
  expect_error(read_matrix(file_of("g,a", "g1,1", "g2,ND", "g3,3")), "na = \"ND\"", fixed = TRUE)
  expect_error(read_matrix(file_of("g\ta", "g1\t1", "g2\t2", "g3\t3"), ","), "delimiter = \"\\t\"", fixed = TRUE)
  expect_error(read_matrix(file_of("g,a", "g1,1", "g2,-2", "g3,3"), log1p = TRUE), "row \"g2\" has a value below 0")
})

test_that("files that are no matrix are refused", {
  expect_error(read_matrix(file_of("gene\ta\tb", "g1\t1\t2", "g2\t1", "g3\t1\t2")), "row \"g2\" has 1 value,")
  expect_error(read_matrix(file_of("gene\ta", "g1\t1")), "has 1 row, and an embedding needs at least 3")
  expect_error(read_matrix(file_of("# above", "gene\ta", "g1\tx")), "found no numbers")
  expect_error(read_matrix(tempfile()), "there is no such file")
  expect_error(read_matrix(tempdir()), "directory")
})

test_that("a long refusal keeps its end, which says what to do", {
  path <- file_of(paste0("gene\ta\t", strrep("x", 1500)), paste0("g", 1:3, "\t1\tkinase"))
  call <- sprintf("ovik::read_matrix(\"%s\")", path)
  printed <- suppressWarnings(system2(file.path(R.home("bin"), "Rscript"), c("-e", shQuote(call)), stderr = TRUE))
  expect_match(paste(printed, collapse = ""), "are read with names_column = \"x+\"[.]")
})

test_that("names are those of the file, whatever its encoding", {
  path <- tempfile()
  writeBin(c(charToRaw("g,a\nG"), as.raw(0xe9), charToRaw(",1\nH\u00e9,2\nI,3\n")), path)
  names <- rownames(read_matrix(path))
  expect_identical(charToRaw(names[1]), as.raw(c(0x47, 0xe9)))
  expect_identical(names[2:3], c("H\u00e9", "I"))
})

test_that("arguments that fit no file are refused", {
  path <- file_of("gene,a", "g1,1", "g2,2", "g3,3")
  expect_error(read_matrix(textConnection("x")), "file should be the name of a file")
  expect_error(read_matrix("-"), "file should be the name of a file")
  for (delimiter in list("", "ab", "\n", "\"", "\u00e9", 3, NA)) {
    expect_error(read_matrix(path, delimiter), "delimiter should be one character")
  }
  expect_error(read_matrix(path, decimal = ";"), "decimal should be NULL or one of \"\\.\", \",\"")
  expect_error(read_matrix(path, missing = "mean"), "missing should be NULL or one of \"zero\"")
  expect_error(read_matrix(path, header = NA), "header should be TRUE or FALSE")
  expect_error(read_matrix(path, na = -999), "na should be texts as they stand in the file, not -999\n\"-999\" stands")
  expect_error(read_matrix(path, skip_columns = 0), "skip_columns should be headers or numbers of columns, not 0")
  expect_error(read_matrix(path, skip_columns = TRUE), "skip_columns should be headers")
  expect_error(read_matrix(path, skip_columns = "b"), "there is no column \"b\"")
  expect_error(read_matrix(path, names_column = c(1, 2)), "names_column should be headers .*\nGive one of them")
  expect_error(read_matrix(path, sheet = 2), "sheet should be the name of a sheet, not 2")
  expect_error(read_matrix(path, sheet = "two"), "is no Excel workbook")
  expect_error(read_matrix(path, sep = ","), "unused argument")
})
