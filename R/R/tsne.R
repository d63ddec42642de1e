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

# The engine searches for neighbours among rows of values. A map of distances by way of coordinates
# made up for them would be another one.
tsne.dist <- function(x, perplexity = 30, ...) {
  refuse(
    "x is a 'dist', and tsne() embeds the rows of a matrix, not distances",
    "Give the matrix that the distances were computed from; tsne() takes Euclidean ones itself."
  )
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
    sprintf("x should be a matrix, a data frame or a SummarizedExperiment, not of class '%s'", class(x)[1]),
    cure
  )
}

# Embeds a matrix; `options` are those of the fit, by the names of the arguments, of which the call has
# those that are given.
embed <- function(x, options, preset, labels, threads, verbose, call) {
  check_options(options)
  check_preset(preset)
  threads <- checked_threads(threads)
  check_flag("verbose", verbose)
  check_values(x)
  given <- intersect(names(options), names(call))
  sent <- options[union("perplexity", given)]
  options <- .Call(C_settle, lapply(sent, bare_value), given, preset, dim(x))
  if (!is.null(options$perplexity)) check_perplexity(options$perplexity, nrow(x))
  labels <- checked_labels(labels, x)

  values <- x
  storage.mode(values) <- "double"
  fit <- .Call(C_embed, values, options, threads, verbose)
  if (nzchar(fit$threads_note)) warning(fit$threads_note, call. = FALSE)

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
