# What is embedded, and what is refused with a cure.

short <- function(x, ...) tsne(x, 10, max_iter = 5, ...)

test_that("tables, whole numbers and truth values are taken as their numbers", {
  x <- round(groups())
  expected <- short(x)$Y
  whole <- x
  storage.mode(whole) <- "integer"
  expect_identical(short(whole)$Y, expected)
  expect_identical(bare(short(as.data.frame(x))$Y), bare(expected))
  truth <- x > 10
  expect_identical(short(truth)$Y, short(truth + 0)$Y)
})

test_that("names of rows are kept where there are some", {
  x <- groups()
  table <- as.data.frame(x)
  expect_null(rownames(short(table)$Y))
  rownames(table) <- paste0("gene", seq_len(60))
  expect_identical(rownames(short(table)$Y), rownames(table))
  expect_identical(short(table)$Y, short(as.matrix(table))$Y)
})

test_that("columns that are no numbers are refused by name", {
  table <- as.data.frame(groups())
  table$gene <- rep(c("CDC28", "RPL3"), 30)
  expect_error(short(table), "column 'gene' of x is no column of numbers but 'character'.*rownames\\(x\\) <- x\\$gene; x\\$gene <- NULL\\.")
  table$gene <- factor(table$gene)
  table$day <- as.Date("2026-11-22") + 1:60
  expect_error(short(table), "'gene' .* 'factor' \\(2 such columns, also 'day'\\)")
  table$gene <- NULL
  expect_error(short(table), "column 'day' of x .* 'Date'")
  table$day <- as.list(1:60)
  expect_error(short(table), "column 'day' of x .* 'list'")
  table$day <- structure(as.double(1:60), class = "integer64")
  expect_error(short(table), "column 'day' of x .* 'integer64'")
})

test_that("values that are missing or infinite are refused with their place", {
  x <- groups()
  x[7, 3] <- NA
  expect_error(short(x), "x has NA in row 7, column 3\n.*na.omit")
  x[5, 4] <- -Inf
  dimnames(x) <- list(paste0("g", 1:60), c("a", "b", "c", "d"))
  expect_error(short(x), "x has -Inf in row 5 \\('g5'\\), column 4 \\('d'\\) \\(2 such values in all\\)")
  expect_error(short(as.data.frame(x)), "row 5 \\('g5'\\)")
})

test_that("what is no matrix of numbers is refused", {
  expect_error(short(matrix("a", 9, 2)), "matrix of numbers, and is one of 'character'")
  expect_error(short(matrix(1i, 9, 2)), "'complex'")
  expect_error(short(1:9), "not of class 'integer'\ncbind\\(x\\)")
  expect_error(short(list(1, 2)), "not of class 'list'")
  expect_error(short(NULL), "not of class 'NULL'")
  expect_error(short(array(1, c(3, 3, 3))), "not of class 'array'")
  expect_error(short(groups(2)), "x has 2 rows and 4 columns.*at least 3 rows")
  expect_error(short(matrix(0, 9, 0)), "9 rows and 0 columns")
})

test_that("distances are embedded as a dist or as a matrix", {
  x <- groups()
  for (theta in c(0, 0.5)) {
    of_dist <- short(dist(x), theta = theta)
    of_matrix <- short(unname(as.matrix(dist(x))), theta = theta, metric = "precomputed")
    expect_identical(of_dist$Y, of_matrix$Y)
    expect_identical(dim(of_dist$Y), c(nrow(x), 2L))
    expect_null(rownames(of_dist$Y))
    expect_false(identical(of_dist$Y, short(as.matrix(dist(x, "manhattan")), theta = theta, metric = "precomputed")$Y))
  }
  rownames(x) <- paste0("g", seq_len(nrow(x)))
  expect_identical(rownames(short(dist(x))$Y), rownames(x))
  expect_error(short(dist(x), metric = "pearson"), "no other metric is of use\nLeave metric out")
})

test_that("what is no matrix of distances is refused with its place", {
  distances <- as.matrix(dist(groups()))
  precomputed <- function(x) short(x, metric = "precomputed")
  expect_error(precomputed(groups()), "60 rows and 4 columns: a matrix of distances is square")
  bad <- distances
  bad[7, 3] <- bad[7, 3] + 1
  expect_error(precomputed(bad), "row 7 \\('7'\\), column 3 \\('3'\\) is .*the other way round")
  bad <- distances
  bad[5, 5] <- 2
  expect_error(precomputed(bad), "row 5 .*column 5 .*is 2, and not 0: that of the row from itself")
  bad <- distances
  bad[5, 4] <- bad[4, 5] <- -1
  expect_error(precomputed(bad), "row 5 .*column 4 .*is -1, below 0\nDistances are needed")
  bad <- distances[, c(2, 1, 3:60)]
  expect_error(precomputed(bad), "row 1 of x is '1', and column 1 is '2'")
  expect_silent(precomputed(distances + 1e-13))
})

test_that("rows are compared by their correlation, and those without one are refused by name", {
  x <- groups()
  scaled <- x * 2^(seq_len(nrow(x)) %% 7 - 3)
  for (metric in c("pearson", "cosine", "spearman")) {
    expect_identical(short(scaled, metric = metric)$Y, short(x, metric = metric)$Y)
  }
  x[4, ] <- 3
  rownames(x) <- paste0("g", seq_len(nrow(x)))
  expect_error(short(x, metric = "pearson"), "1 row has no correlation .* do not vary: row 4 \\('g4'\\)\n")
  expect_silent(short(x, metric = "cosine"))
  x[c(4, 5, 8, 9), ] <- 0
  expect_error(
    short(x, metric = "cosine"),
    "4 rows have no cosine .* all 0: row 4 \\('g4'\\), 5 \\('g5'\\), 8 \\('g8'\\), \\.\\.\\.\n"
  )
})

test_that("a first column that counts the rows gets a warning", {
  x <- groups()
  file <- tempfile()
  write.csv(as.data.frame(x), file)
  expect_warning(short(read.csv(file)), "column 1 \\('X'\\) of x counts the rows.*x\\[, -1\\]")
  expect_warning(short(cbind(0:59, x)), "column 1 of x counts the rows")
  expect_silent(short(x))
  expect_silent(short(cbind(x, 1:60)))
})

test_that("sparse matrices are refused, but taken as an assay", {
  skip_if_not_installed("SummarizedExperiment")
  x <- groups() * (groups() > 10)
  sparse <- Matrix::Matrix(x, sparse = TRUE)
  expect_error(short(sparse), "not of class 'dgCMatrix'\nGive as.matrix\\(x\\)")
  experiment <- SummarizedExperiment::SummarizedExperiment(list(counts = sparse))
  expect_identical(bare(short(experiment)$Y), bare(short(x)$Y))
})

test_that("values without a scale are refused", {
  expect_error(short(matrix(1, 60, 2)), "all rows of x hold the same values")
  expect_error(short(groups() * 1e300), "too large to be computed with")
  expect_error(short(groups() * 1e-305), "too close to one another")
  expect_error(short(matrix(rep(c(1, 2), each = 60), 60)), "all rows of x hold the same values")
})

test_that("assays of a SummarizedExperiment are embedded by their rows", {
  skip_if_not_installed("SummarizedExperiment")
  x <- groups()
  dimnames(x) <- list(paste0("g", 1:60), letters[1:4])
  experiment <- SummarizedExperiment::SummarizedExperiment(list(counts = x + 1, logs = sqrt(x + 1)))
  expect_identical(short(experiment)$Y, short(x + 1)$Y)
  expect_identical(short(experiment, assay = "logs")$Y, short(sqrt(x + 1))$Y)
  expect_identical(short(experiment, assay = 2)$Y, short(sqrt(x + 1))$Y)
  ranged <- methods::as(experiment, "RangedSummarizedExperiment")
  expect_identical(short(ranged)$Y, short(x + 1)$Y)
})
