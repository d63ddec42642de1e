# A fit ends when it is told to, and tells how far it is.

endless <- function() tsne(groups(300), 10, max_iter = 1e9)

test_that("Ctrl-C ends a fit, and the next one is undisturbed", {
  expected <- tsne(groups(), 10, max_iter = 20)$Y
  system(sprintf("(sleep 0.5; kill -INT %d) >/dev/null 2>&1 &", Sys.getpid()))
  ended <- tryCatch(endless(), interrupt = function(condition) "interrupted")
  expect_identical(ended, "interrupted")
  expect_identical(tsne(groups(), 10, max_iter = 20)$Y, expected)
})

test_that("a time limit ends a fit", {
  on.exit(setTimeLimit())
  expect_error({
    setTimeLimit(elapsed = 0.5)
    endless()
  }, "time limit")
})

test_that("a time limit ends the fit of a sample", {
  on.exit(setTimeLimit())
  expect_error({
    setTimeLimit(elapsed = 0.5)
    tsne(matrix(sin(seq_len(8000)), 2000), 10, max_iter = 1e9, start = "sample")
  }, "time limit")
})

test_that("an error where its messages go ends a fit", {
  fail <- function(condition) stop("not here")
  expect_error(withCallingHandlers(tsne(groups(300), 10, max_iter = 1e9, verbose = TRUE), message = fail), "not here")
  expect_length(tsne(groups(), 10, max_iter = 2)$costs, 3)
})

test_that("progress is told by messages when it is asked for", {
  told <- capture_messages(tsne(groups(), 10, max_iter = 120, verbose = TRUE))
  expect_match(told[length(told)], "^Iteration 120 of 120: cost [0-9.]+\n$")
  expect_identical(sum(grepl("^Iteration", told)), 4L)
  expect_silent(tsne(groups(), 10, max_iter = 120))
})

test_that("one fit runs at a time in a process", {
  within <- function(condition) tsne(groups(), 10, max_iter = 2)
  expect_error(
    withCallingHandlers(tsne(groups(300), 10, max_iter = 1e9, verbose = TRUE), message = within),
    "A fit runs already"
  )
})

test_that("a process that was forked after a fit can fit, too", {
  expected <- tsne(groups(300), 10, max_iter = 20, threads = 2)$Y
  child <- parallel::mcparallel(tsne(groups(300), 10, max_iter = 20, threads = 2)$Y)
  expect_identical(parallel::mccollect(child, timeout = 60)[[1]], expected)
})

test_that("a fit whose memory cannot be had is refused", {
  expect_error(
    tsne(matrix(sin(seq_len(4e5)), 4e5), 10, theta = 0, max_iter = 2),
    "The memory of the fit cannot be had\nFewer rows"
  )
})
