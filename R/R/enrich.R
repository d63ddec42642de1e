# Terms of lists of yeast genes, tested by the library as the command tests them.

enrich <- function(genes, background = NULL) {
  names <- checked_genes("genes", genes)
  # One text may hold several names.
  if (length(names) == 1) names <- .Call(C_split_names, names)
  if (!is.null(background)) background <- checked_genes("background", background)
  found <- .Call(C_enrich, names, background)
  if (found$found == 0) {
    refuse(
      sprintf("none of the %d names is that of one gene of yeast", length(names)),
      "Genes are known by standard and systematic names (CDC28, YBR160W)."
    )
  }
  if (found$drawn == 0) {
    refuse(
      paste0("none of the genes is in a GO slim term", if (!is.null(background)) " and in background"),
      "There is nothing to test."
    )
  }
  if (length(found$not_found) > found$found) {
    warning(
      length(found$not_found), " of ", length(names), " names are not found: ",
      paste(utils::head(printable(found$not_found), 10), collapse = ", "), call. = FALSE
    )
  }
  facts <- found[c("tested", "not_found", "ambiguous", "outside", "without_terms")]
  do.call(structure, c(list(as.data.frame(found$terms)), facts))
}

# Names of genes: texts, or those of the rows of a matrix, data frame or map.
checked_genes <- function(argument, value) {
  names <- if (inherits(value, "ovik_tsne")) rownames(value$Y) else value
  if (length(dim(names)) == 2) names <- rownames(names)
  if (is.factor(names)) names <- as.character(names)
  if (!is.character(names) || anyNA(names)) {
    refuse(
      sprintf("%s should be names of genes, or a matrix with names of its rows, not %s", argument, shown(value)),
      "Genes are known by standard and systematic names (CDC28, YBR160W)."
    )
  }
  names
}
