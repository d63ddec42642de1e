# The generic and its methods but that for matrices, which is in parameters.R.

tsne <- function(x, perplexity = 30, ...) UseMethod("tsne")

tsne.data.frame <- function(x, perplexity = 30, ...) {
  call <- match.call()
  result <- embedded_matrix(matrix_of_table(x), missing(perplexity), perplexity, ...)
  with_call(result, call)
}

# A matrix that was of another class. What is not given stays so.
embedded_matrix <- function(x, has_no_perplexity, perplexity, ...) {
  if (has_no_perplexity) tsne.matrix(x, ...) else tsne.matrix(x, perplexity, ...)
}

tsne.SummarizedExperiment <- function(x, perplexity = 30, ..., assay = 1L) {
  call <- match.call()
  values <- as.matrix(SummarizedExperiment::assay(x, assay))
  result <- embedded_matrix(values, missing(perplexity), perplexity, ...)
  with_call(result, call)
}

tsne.dist <- function(x, perplexity = 30, ...) {
  call <- match.call()
  if ("metric" %in% names(list(...))) {
    refuse("x is a 'dist', so that no other metric is of use", "Leave metric out.")
  }
  distances <- as.matrix(x)
  # as.matrix numbers what has no names.
  if (is.null(attr(x, "Labels"))) dimnames(distances) <- NULL
  result <- if (missing(perplexity)) {
    tsne.matrix(distances, metric = "precomputed", ...)
  } else {
    tsne.matrix(distances, perplexity, metric = "precomputed", ...)
  }
  with_call(result, call)
}

tsne.default <- function(x, perplexity = 30, ...) {
  cure <- if (inherits(x, c("sparseMatrix", "Matrix"))) {
    "Give as.matrix(x)."
  } else if (is.atomic(x) && is.null(dim(x))) {
    "cbind(x) makes a matrix of a single column."
  } else {
    "Give a matrix with a row for each point of the map."
  }
  refuse(
    sprintf("x should be a matrix, a data frame, a dist or a SummarizedExperiment, not of class '%s'", class(x)[1]),
    cure
  )
}

# Embeds a matrix; `options` are those of the fit, by the names of the arguments, of which the call has
# those that are given.
embed <- function(x, options, preset, labels, threads, verbose, call) {
  start <- options$start
  if (is.data.frame(start)) start <- matrix_of_table(start)
  if (is.matrix(start)) options$start <- "given"
  if (identical(start, "given")) options$start <- "" # The name stands for coordinates alone.
  check_options(options)
  check_preset(preset)
  threads <- checked_threads(threads)
  check_flag("verbose", verbose)
  check_values(x)
  metric <- options$metric
  start <- checked_start(start, x, options$dims)
  given <- intersect(names(options), names(call))
  sent <- options[union("perplexity", given)]
  options <- .Call(C_settle, lapply(sent, bare_value), given, preset, dim(x))
  check_metric(x, metric)
  if (!is.null(options$perplexity)) check_perplexity(options$perplexity, nrow(x))
  labels <- checked_labels(labels, x)

  values <- x
  storage.mode(values) <- "double"
  fit <- .Call(C_embed, values, options, start, threads, verbose)
  for (note in c(fit$threads_note, fit$start_note)) if (nzchar(note)) warning(note, call. = FALSE)

  dimnames(fit$Y) <- list(rownames(x), paste0("tsne", seq_len(ncol(fit$Y))))
  result <- structure(
    list(
      Y = fit$Y,
      cost = fit$cost,
      costs = fit$costs,
      iteration = fit$iteration,
      options = options,
      labels = labels,
      columns = ncol(x),
      call = NULL
    ),
    class = "ovik_tsne"
  )
  with_call(result, call)
}

# A result with the call that the user wrote, which R has by the name of the method.
with_call <- function(result, call) {
  call[[1]] <- quote(tsne)
  result["call"] <- list(call)
  result
}
