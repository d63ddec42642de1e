# Runs a file of tests; status 1 tells that one failed, or that one was left out.
# usage: Rscript run_tests.R FILE

file <- commandArgs(trailingOnly = TRUE)
# The runner leaves directories beside the tests.
copy <- file.path(tempdir(), "tests")
dir.create(copy)
stopifnot(file.copy(list.files(dirname(file), full.names = TRUE), copy))
results <- as.data.frame(testthat::test_file(
  file.path(copy, basename(file)),
  package = "ovik", reporter = "check", stop_on_failure = TRUE, stop_on_warning = TRUE
))
if (nrow(results) == 0 || any(results$skipped)) stop("a test was left out, or there was none")
