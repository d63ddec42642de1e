# What a map says of itself, and how it is drawn.

labelled_map <- function() {
  x <- groups(90)
  rownames(x) <- paste0("g", 1:90)
  tsne(x, 10, max_iter = 30, labels = rep(c("one", "two", NA), 30))
}

test_that("print and summary tell method, cost and labels", {
  map <- labelled_map()
  expect_output(print(map), paste0(
    "t-SNE map of 90 rows of 4 values in 2 dimensions\n",
    "perplexity 10, Barnes-Hut method with theta 0.5, seed 11\n",
    sprintf("cost %.4f after iteration 30", map$cost)
  ))
  expect_output(print(tsne(groups(), 10, theta = 0, max_iter = 2)), "exact method")
  told <- summary(map)
  expect_identical(told$coordinates, apply(map$Y, 2, range))
  expect_identical(as.vector(told$labels), c(30L, 30L, 30L))
  expect_output(print(told), "learning_rate +200\n.*Coordinates:.*Labels:")
})

test_that("the call is the one that was written", {
  x <- groups()
  expect_identical(tsne(x, 10, max_iter = 2)$call, quote(tsne(x = x, perplexity = 10, max_iter = 2)))
  table <- as.data.frame(x)
  expect_identical(tsne(table, 10, max_iter = 2)$call, quote(tsne(x = table, perplexity = 10, max_iter = 2)))
})

test_that("a map becomes a data frame, also with names that repeat", {
  map <- labelled_map()
  rownames(map$Y)[2] <- "g1"
  table <- as.data.frame(map)
  expect_named(table, c("name", "tsne1", "tsne2", "label"))
  expect_identical(table$name[1:3], c("g1", "g1", "g3"))
  expect_identical(cbind(table$tsne1, table$tsne2), bare(map$Y))
  expect_identical(table$label, map$labels)
  expect_named(as.data.frame(tsne(groups(), 10, max_iter = 2, dims = 3)), c("tsne1", "tsne2", "tsne3"))
})

test_that("a plot is drawn for each kind of labels", {
  map <- labelled_map()
  path <- tempfile(fileext = ".svg")
  for (labels in list(NULL, map$labels, 1:90)) {
    grDevices::pdf(path)
    expect_identical(plot(map, labels = labels), map)
    grDevices::dev.off()
    expect_gt(file.size(path), 3000)
  }
  grDevices::pdf(path)
  on.exit(grDevices::dev.off())
  expect_silent(plot(map, legend = FALSE, main = "Map"))
  expect_error(plot(map, components = c(1, 3)), "components should be two of the 2")
  expect_error(plot(map, labels = 1:3), "there are 3 labels for 90 rows")
})

test_that("labels have the colours and markers of the chart page", {
  source <- paste(readLines(project_file("plots/page/src/palette.js")), collapse = "\n")
  light <- regmatches(source, regexpr("light: \\[[^]]*'#[^]]*\\]", source))
  colours <- regmatches(light, gregexpr("#[0-9a-f]{6}", light))[[1]]
  shapes <- regmatches(source, gregexpr("(?<=name: ')[a-z ]+", source, perl = TRUE))[[1]]
  expect_identical(ovik:::page_colours, colours)
  markers <- c(circle = 16, triangle = 17, square = 15, diamond = 18, "downward triangle" = 25, plus = 3, cross = 4, star = 8)
  expect_identical(ovik:::page_markers, unname(markers[shapes]))

  styles <- ovik:::label_styles(66)
  expect_identical(nrow(unique(styles[1:64, ])), 64L)
  expect_identical(unlist(styles[65:66, ]), unlist(styles[1:2, ]), ignore_attr = TRUE)
  expect_identical(styles$pch[9], 17)
  expect_identical(styles$col[9], colours[1])
})
