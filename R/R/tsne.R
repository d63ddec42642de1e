# The generic and its methods but that for matrices, which is in parameters.R.

tsne <- function(x, perplexity = 30, ...) UseMethod("tsne")

tsne.data.frame <- function(x, perplexity = 30, ...) {
  call <- match.call()
  result <- tsne.matrix(matrix_of_table(x), perplexity, ...)
  with_call(result, call)
}

tsne.SummarizedExperiment <- function(x, perplexity = 30, ..., assay = 1L) {
  call <- match.call()
  values <- as.matrix(SummarizedExperiment::assay(x, assay))
  result <- tsne.matrix(values, perplexity, ...)
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

# Embeds a matrix; `options` are the numbers of the fit, by the names of the arguments.
embed <- function(x, options, labels, threads, verbose, call) {
  check_options(options)
  threads <- checked_threads(threads)
  check_flag("verbose", verbose)
  check_values(x)
  check_perplexity(options$perplexity, nrow(x))
  labels <- checked_labels(labels, x)

  values <- x
  storage.mode(values) <- "double"
  fit <- .Call(C_embed, values, lapply(options, as.double), threads, verbose)
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
