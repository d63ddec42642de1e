# What a map says of itself.

print.ovik_tsne <- function(x, ...) {
  cat(sprintf(
    "t-SNE map of %d rows of %d values in %d dimensions\n", nrow(x$Y), x$columns, ncol(x$Y)
  ))
  cat(sprintf(
    "%s, %s, seed %g\n", affinities_of(x$options),
    method_of(x$options),
    x$options$seed
  ))
  cat(sprintf("cost %.4f after iteration %d\n", x$cost, x$iteration))
  invisible(x)
}

# How the forces were computed, in words.
method_of <- function(options) {
  if (identical(options$method, "mesh")) return("particle-mesh method")
  if (identical(options$method, "exact") || options$theta == 0) return("exact method")
  sprintf("Barnes-Hut method with theta %g", options$theta)
}

# What the similarities of the rows are, in words.
affinities_of <- function(options) {
  if (!is.null(options$perplexity)) return(sprintf("perplexity %g", options$perplexity))
  if (!is.null(options$multiscale)) return(paste("perplexities", toString(options$multiscale)))
  sprintf("uniform affinities of %g neighbours", options$neighbours)
}

summary.ovik_tsne <- function(object, ...) {
  structure(
    list(
      call = object$call,
      rows = nrow(object$Y),
      columns = object$columns,
      options = object$options,
      cost = object$cost,
      iteration = object$iteration,
      coordinates = apply(object$Y, 2, range),
      labels = if (!is.null(object$labels)) table(object$labels, useNA = "ifany", dnn = NULL)
    ),
    class = "summary.ovik_tsne"
  )
}

shown_option <- function(value) {
  if (is.numeric(value)) paste(sprintf("%g", value), collapse = ", ") else value
}

print.summary.ovik_tsne <- function(x, ...) {
  cat("Call:\n", paste(deparse(x$call), collapse = "\n"), "\n\n", sep = "")
  cat(sprintf("%d rows of %d values\n\nOptions:\n", x$rows, x$columns))
  for (name in names(x$options)) cat(sprintf("  %-16s %s\n", name, shown_option(x$options[[name]])))
  cat(sprintf("\nCost %.4f after iteration %d\n\nCoordinates:\n", x$cost, x$iteration))
  coordinates <- t(x$coordinates)
  colnames(coordinates) <- c("least", "most")
  print(coordinates, digits = 4)
  if (!is.null(x$labels)) {
    cat("\nLabels:\n")
    print(x$labels)
  }
  invisible(x)
}

# Names of rows may repeat, so they are a column.
as.data.frame.ovik_tsne <- function(x, row.names = NULL, optional = FALSE, ...) {
  parts <- list()
  if (!is.null(rownames(x$Y))) parts$name <- rownames(x$Y)
  for (component in colnames(x$Y)) parts[[component]] <- unname(x$Y[, component])
  if (!is.null(x$labels)) parts$label <- x$labels
  table <- as.data.frame(parts, stringsAsFactors = FALSE, optional = TRUE)
  if (!is.null(row.names)) rownames(table) <- row.names
  table
}
