# Options, threads and labels: what they may be, and what is said of others.

test_that("options out of their ranges are refused with what they should be", {
  x <- groups()
  expect_error(tsne(x, 0.5), "perplexity should be a number at least 1, at most 1e9, not 0.5")
  expect_error(tsne(x, NA), "perplexity should be .* not NA")
  expect_error(tsne(x, "30"), "perplexity should be .* not \"30\"")
  expect_error(tsne(x, 10, dims = 1), "dims should be a whole number from 2 to 50, not 1")
  expect_error(tsne(x, 10, dims = 2.5), "dims should be a whole number from 2 to 50, not 2.5")
  expect_error(tsne(x, 10, max_iter = 0), "max_iter should be")
  expect_error(tsne(x, 10, theta = Inf), "theta should be")
  expect_error(tsne(x, 10, theta = c(0.1, 0.2)), "theta should be .* not c\\(0.1, 0.2\\)")
  expect_error(tsne(x, 10, seed = 2^31), "seed should be")
  expect_error(tsne(x, 10, momentum = 1), "momentum should be a number at least 0, below 1, not 1")
})

test_that("every option has the same default in all methods, and is in its range", {
  arguments <- as.list(formals(ovik:::tsne.matrix))
  defaults <- arguments[names(ovik:::requirements)]
  expect_silent(ovik:::check_options(defaults))
  for (method in c("data.frame", "SummarizedExperiment", "dist", "default")) {
    expect_identical(formals(getS3method("tsne", method))$perplexity, defaults$perplexity)
  }
  expect_identical(formals(tsne)$perplexity, defaults$perplexity)
})

test_that("choices and lists are refused with what they should be", {
  x <- groups()
  metrics <- "\"euclidean\", \"pearson\", \"cosine\", \"spearman\" or \"precomputed\""
  expect_error(tsne(x, 10, metric = "manhattan"), paste0("metric should be ", metrics, ", not \"manhattan\""))
  expect_error(tsne(x, 10, metric = 1), "metric should be .* not 1")
  expect_error(tsne(x, 10, metric = NULL), "metric should be .* not NULL")
  expect_error(tsne(x, 10, schedule = NA_character_), "schedule should be .* not NA")
  expect_error(tsne(x, multiscale = c(10, 10)), "up to 8 different numbers, .* not c\\(10, 10\\)")
  expect_error(tsne(x, multiscale = "10"), "multiscale should be")
  expect_error(tsne(x, 10, learning_rate = "slow"), "or \"auto\", not \"slow\"")
  expect_error(tsne(x, 10, start = "given"), "start should be \"random\", \"pca\", \"sample\" or a matrix of coordinates")
  expect_error(tsne(x, 10, preset = "fine"), "preset should be \"classic\" or \"refined\", not \"fine\"")
})

test_that("arguments that do not fit each other or x are refused with the cure", {
  x <- groups()
  expect_error(
    tsne(x, 10, hold_iter = 125),
    "hold_iter has no effect beside schedule = \"classic\"\nLeave hold_iter out, or give schedule = \"annealed\"."
  )
  expect_error(tsne(x, 10, preset = "refined", stop_lying_iter = 250), "stop_lying_iter has no effect")
  expect_error(tsne(x, 10, affinity = "uniform"), "perplexity has no effect beside affinity = \"uniform\"")
  expect_error(tsne(as.data.frame(x), 10, multiscale = c(5, 10)), "beside multiscale = c\\(5,10\\)")
  expect_error(tsne(x, affinity = "uniform", neighbours = 59), "neighbours = 59: a row has 59 others")
  expect_error(tsne(x, 10, pca = 4), "pca = 4: the matrix has 60 rows and 4 columns")
  expect_error(tsne(x, 10, metric = "precomputed", start = "pca"), "start = \"pca\" does not go with metric")
})

test_that("a run without a perplexity is told so", {
  map <- tsne(as.data.frame(groups()), affinity = "uniform", neighbours = 7, max_iter = 2)
  expect_null(map$options$perplexity)
  expect_output(print(map), "uniform affinities of 7 neighbours, Barnes-Hut method with theta 0.5, seed 11")
  expect_output(print(tsne(groups(), multiscale = c(5, 9), max_iter = 2)), "perplexities 5, 9, ")
})

test_that("a preset stands for what is not given", {
  options <- function(...) tsne(groups(), 10, max_iter = 2, ...)$options
  refined <- options(preset = "refined")
  expect_identical(refined$schedule, "annealed")
  expect_null(refined$stop_lying_iter)
  expect_identical(options(preset = "refined", schedule = "classic")$schedule, "classic")
  expect_identical(options(preset = "classic"), options())
  expect_output(print(summary(tsne(groups(), 10, preset = "refined", max_iter = 2))), "schedule +annealed")
})

test_that("a map starts where it is told", {
  x <- groups()
  start <- matrix(sin(seq_len(120)) * 1e-4, 60, 2)
  still <- tsne(x, 10, start = start, max_iter = 1, learning_rate = 1e-12)
  expect_equal(bare(still$Y), sweep(start, 2, colMeans(start)), tolerance = 1e-9)
  expect_identical(still$options$start, "given")
  expect_warning(tsne(x, 10, start = start * 1e8, max_iter = 1), "the places of the start lie up to .* from their mean")
  expect_error(tsne(x, 10, start = start[-1, ]), "start has 59 rows and 2 columns, and the map has 60 and 2")
  start[7, 2] <- NA
  expect_error(tsne(x, 10, start = start), "start has coordinates in row 7 that are not finite")
})

test_that("arguments that no method has are refused with the one that may be meant", {
  x <- groups()
  expect_error(tsne(x, 10, max_iters = 5), "no argument 'max_iters'\nIs 'max_iter' meant?")
  expect_error(tsne(as.data.frame(x), 10, thread = 2), "no argument 'thread'\nIs 'threads' meant?")
  expect_error(tsne(x, 10, quite_another = 5), "no argument 'quite_another'\nSee \\?tsne")
  expect_error(tsne(x, 10, 0.5), "have to be named")
})

test_that("a perplexity that the rows cannot bear is refused, a large one gets a warning", {
  expect_error(tsne(groups(30)), "perplexity = 30: each of 30 rows has 29 others")
  expect_warning(tsne(groups(60), 20, max_iter = 2), "perplexity = 20 is large for 60 rows: .* 19.7")
  expect_silent(tsne(groups(61), 20, max_iter = 2))
})

test_that("threads and verbose are checked", {
  x <- groups()
  expect_error(tsne(x, 10, threads = 0), "threads should be a whole number from 1 to 1000000, not 0")
  expect_error(tsne(x, 10, threads = "2"), "threads should be")
  expect_error(tsne(x, 10, verbose = NA), "verbose should be TRUE or FALSE, not NA")
  expect_warning(tsne(x, 10, threads = 1e6, max_iter = 2), "threads are more than are of use")
})

test_that("labels are kept in their order", {
  x <- groups(6)
  labels <- function(labels) suppressWarnings(tsne(x, 2, max_iter = 2, labels = labels)$labels)
  expect_identical(labels(c("b", "a", "b", NA, "c", "a")), factor(c("b", "a", "b", NA, "c", "a"), c("b", "a", "c")))
  given <- factor(c("b", "a", "b", "b", "c", "a"))
  expect_identical(labels(given), given)
  expect_identical(labels(c(2, 1, 2, 2, 1, 1)), factor(c(2, 1, 2, 2, 1, 1), c(2, 1)))
  expect_error(labels(1:5), "there are 5 labels for 6 rows of x")
  expect_error(labels(list(1, 2, 3, 4, 5, 6)), "not of class 'list'")
})

test_that("labels with names go to the rows of these names", {
  x <- groups(6)
  rownames(x) <- letters[1:6]
  labels <- function(labels) as.character(suppressWarnings(tsne(x, 2, max_iter = 2, labels = labels)$labels))
  named <- c(f = "6", e = "5", d = "4", c = "3", b = "2", a = "1")
  expect_identical(labels(named), as.character(1:6))
  expect_identical(labels(unname(named)), as.character(6:1))
  names(named)[1] <- "g"
  expect_error(labels(named), "none is that of row 'f' of x \\(1 such rows\\)")
  names(named)[1] <- "a"
  rownames(x)[6] <- "a"
  expect_error(labels(named), "more than once")
})

test_that("maps start along components, or at places", {
  x <- groups(30)
  rownames(x) <- paste0("r", 1:30)
  along <- tsne(x, 5, max_iter = 30, start = "pca")
  expect_false(identical(along$Y, tsne(x, 5, max_iter = 30)$Y))
  places <- matrix(sin(seq_len(60)), 30, dimnames = list(rownames(x), NULL))
  at <- tsne(x, 5, max_iter = 30, start = places)
  expect_identical(tsne(x, 5, max_iter = 30, start = places[30:1, ])$Y, at$Y)
  expect_identical(tsne(x, 5, max_iter = 30, start = as.data.frame(places))$Y, at$Y)
  expect_identical(at$options$start, "given")
  gap <- places
  gap[4, ] <- NA
  expect_identical(tsne(x, 5, max_iter = 30, start = places[-4, ])$Y, tsne(x, 5, max_iter = 30, start = gap)$Y)
  expect_error(tsne(x, 5, start = bare(places)[-1, ]), "start has 29 rows and 2 columns, and the map has 30 and 2")
  expect_error(tsne(x, 5, start = places[c(1, 1:30), ]), "start has the row 'r1' twice")
  gap[5, 1] <- NA
  expect_error(tsne(x, 5, start = gap), "coordinates in row 5 that are not finite")
  expect_error(tsne(x, 5, start = gap[4, , drop = FALSE]), "a place for none of the rows of x")
  expect_error(tsne(x, 5, pca = 4), "reduce nothing")
})
