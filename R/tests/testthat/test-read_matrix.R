# Matrix files: the numbers are those of their texts, and nothing else is taken for one.

file_of <- function(...) {
  path <- tempfile(fileext = ".tsv")
  writeLines(c(...), path)
  path
}

test_that("numbers are the nearest to their texts, also where R reads others", {
  read <- read_matrix(file_of("gene\ta\tb", "g1\t2.694577\t3.960202", "g2\t 11.340198 \t-1e3"))
  expected <- matrix(c(0x1.58e7e62dc6e2bp+1, 0x1.6ae2e6ea85447p+3, 0x1.fae7e62dc6e2bp+1, -1000), 2)
  expect_identical(read, matrix(expected, 2, dimnames = list(c("g1", "g2"), c("a", "b"))))
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

test_that("missing values are NaN, which a fit refuses", {
  signs <- c("", "NA", "n/a", "#N/A", "NaN", "NULL", "none", "-", "--", ".", "?")
  read <- read_matrix(file_of("gene\ta\tb", paste0("g", seq_along(signs), "\t", signs, "\t1")))
  expect_true(all(is.nan(read[, 1])))
  expect_identical(unname(read[, 2]), rep(1, 11))
  expect_error(tsne(read, 2), "NaN in row 1 \\('g1'\\), column 1 \\('a'\\) \\(11 such values")
})

test_that("quotes, comments, repeated names and a header of values alone are read", {
  read <- read_matrix(file_of("\"a, 1\",b", "\"ARG5,6\",\"1.5\",2", "", "# none", "\"5'\",3,4", "\"5'\",5,6"), sep = ",")
  expect_identical(read, matrix(c(1.5, 3, 5, 2, 4, 6), 3, dimnames = list(c("ARG5,6", "5'", "5'"), c("a, 1", "b"))))
})

test_that("text is refused with its place", {
  expect_error(
    read_matrix(file_of("gene\tNAME\tb", "g1\tkinase\t1", "g2\t2-hydroxyacid\t2")),
    "row 1 \\('g1'\\), column 1 \\('NAME'\\) is \"kinase\", which is not a number \\(2 such fields\\)"
  )
  expect_error(read_matrix(file_of("gene;a", "g1;1,5", "g2;2"), sep = ";"), "is \"1,5\", which is not a number")
  expect_error(read_matrix(file_of("# above", "gene\ta", "g1\t1")), "first line has 1 fields|not a number")
  expect_error(read_matrix(file_of("# above", "gene\ta\tb", "g1\t1\t2")), "the first line has 1 fields, and rows have 3")
})

test_that("files that are no matrix are refused", {
  expect_error(read_matrix(file_of("gene\ta")), "has no rows")
  expect_error(read_matrix(file_of(character())), "has no rows")
  expect_error(read_matrix(file_of("gene,a", "g1,1")), "has a single column\nCheck sep")
  expect_error(read_matrix(file_of("gene\ta\tb", "g1\t1\t2", "g2\t1")), "line 2 did not have 3 elements")
  expect_error(suppressWarnings(read_matrix("no such file")), "cannot open")
})
