# The map is that of the command, to the last bit.

test_that("the map of a matrix is the command's", {
  x <- excerpt()$x[1:200, ]
  path <- tempfile(fileext = ".npy")
  write_npy(x, path)
  for (theta in c(0, 0.5)) {
    expected <- embed_by_command(path, "--perplexity", 12.5, "--theta", theta, "--max-iter", 260)
    for (threads in list(1, 2, 3, NULL)) {
      map <- tsne(x, 12.5, theta = theta, max_iter = 260, threads = threads)
      expect_identical(bare(map$Y), expected)
    }
  }
})

test_that("the map of a text file is the command's", {
  path <- project_file("data/brauer2008_chemostat.tsv")
  lines <- readLines(path, 601)
  part <- tempfile(fileext = ".tsv")
  writeLines(lines, part)
  expected <- embed_by_command(part, "--perplexity", 30, "--max-iter", 300)
  map <- tsne(read.delim(part, row.names = 1, quote = ""), max_iter = 300)
  expect_identical(bare(map$Y), expected)
  expect_identical(rownames(map$Y), sub("\t.*", "", lines[-1]))
})

# The flags of the command that arguments are.
flags_of <- function(arguments) {
  values <- vapply(arguments, paste, "", collapse = ",")
  c(rbind(paste0("--", gsub("_", "-", names(arguments))), values))
}

choices <- list(
  list(perplexity = 7.5, metric = "pearson"),
  list(perplexity = 7.5, pca = 3),
  list(affinity = "uniform", neighbours = 9),
  list(multiscale = c(5, 10)),
  list(perplexity = 7.5, neighbour_search = "approximate"),
  list(perplexity = 7.5, method = "mesh"),
  list(perplexity = 7.5, start = "pca"),
  list(perplexity = 7.5, schedule = "annealed", hold_iter = 10, release_iter = 15, learning_rate = "auto"),
  list(perplexity = 7.5, stop_when = 0.01, stop_lying_iter = 0, max_iter = 120),
  list(perplexity = 7.5, gains = "constant"),
  list(perplexity = 7.5, numerics = "portable"),
  list(perplexity = 7.5, preset = "refined")
)

test_that("every choice is the command's", {
  x <- groups(90, 5)
  path <- tempfile(fileext = ".npy")
  write_npy(x, path)
  for (choice in choices) {
    choice <- utils::modifyList(list(max_iter = 40), choice)
    map <- do.call(tsne, c(list(x), choice))
    expect_identical(bare(map$Y), embed_by_command(path, flags_of(choice)))
  }
})

# The automatic rate of 900 rows is 225 while they are exaggerated fourfold, and 900 at the end.
test_that("steps behind the exaggeration are the command's", {
  x <- groups(900, 5)
  path <- tempfile(fileext = ".npy")
  write_npy(x, path)
  for (choice in list(
    list(learning_rate = "auto", exaggeration = 4, stop_lying_iter = 20),
    list(preset = "refined", hold_iter = 10, release_iter = 20)
  )) {
    map <- do.call(tsne, c(list(x, 30, max_iter = 40), choice))
    expect_identical(bare(map$Y), embed_by_command(path, "--perplexity", 30, "-i", 40, flags_of(choice)))
  }
})

test_that("every option is the command's", {
  x <- groups(90, 5)
  path <- tempfile(fileext = ".npy")
  write_npy(x, path)
  numbers <- list(
    perplexity = 7.5, theta = 0.25, dims = 3, max_iter = 40, stop_lying_iter = 10,
    mom_switch_iter = 20, seed = 5, learning_rate = 50, exaggeration = 4, start_spread = 0.01,
    momentum = 0.3, final_momentum = 0.6
  )
  chosen <- setdiff(unlist(lapply(choices, names)), "preset")
  expect_setequal(c(names(numbers), chosen), names(ovik:::requirements))
  expected <- embed_by_command(path, flags_of(numbers[names(numbers) != "dims"]), dims = 3)
  map <- do.call(tsne, c(list(x), numbers))
  expect_identical(bare(map$Y), expected)
  expect_identical(map$options[names(numbers)], numbers)
})

test_that("cost and costs are those of the fit", {
  map <- tsne(groups(), 10, max_iter = 20, stop_lying_iter = 5)
  expect_length(map$costs, 21)
  expect_identical(map$iteration, 20L)
  expect_true(map$costs[1] > map$costs[21])
  expect_true(is.finite(map$cost))
})

test_that("the random numbers of R are neither used nor changed", {
  set.seed(1)
  before <- .Random.seed
  first <- tsne(groups(), 10, max_iter = 5)
  expect_identical(.Random.seed, before)
  set.seed(2)
  expect_identical(tsne(groups(), 10, max_iter = 5)$Y, first$Y)
  expect_false(identical(tsne(groups(), 10, max_iter = 5, seed = 12)$Y, first$Y))
})

test_that("x stays as it is", {
  x <- groups()
  copy <- x + 0
  tsne(x, 10, max_iter = 5)
  expect_identical(x, copy)
})
