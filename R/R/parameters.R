# The arguments of a fit, from the list of options of the library. What the numbers should be is said
# in `requirements`, by the names of the arguments.

# options of a fit, by scripts/option-texts
tsne.matrix <- function(
  x,
  perplexity = 30,
  ...,
  theta = 0.5,
  method = "auto",
  dims = 2,
  max_iter = 1000,
  stop_lying_iter = 250,
  mom_switch_iter = 250,
  seed = 11,
  learning_rate = 200,
  exaggeration = 12,
  start_spread = 0.0001,
  momentum = 0.5,
  final_momentum = 0.8,
  metric = "euclidean",
  pca = 0,
  affinity = "perplexity",
  neighbours = 15,
  multiscale = NULL,
  start = "random",
  schedule = "classic",
  hold_iter = 125,
  release_iter = 125,
  gains = "adaptive",
  stop_when = 0,
  preset = "classic",
  labels = NULL,
  threads = NULL,
  verbose = FALSE
) {
  options <- list(
    perplexity = perplexity,
    theta = theta,
    method = method,
    dims = dims,
    max_iter = max_iter,
    stop_lying_iter = stop_lying_iter,
    mom_switch_iter = mom_switch_iter,
    seed = seed,
    learning_rate = learning_rate,
    exaggeration = exaggeration,
    start_spread = start_spread,
    momentum = momentum,
    final_momentum = final_momentum,
    metric = metric,
    pca = pca,
    affinity = affinity,
    neighbours = neighbours,
    multiscale = multiscale,
    start = start,
    schedule = schedule,
    hold_iter = hold_iter,
    release_iter = release_iter,
    gains = gains,
    stop_when = stop_when
  )
  refuse_others(...)
  embed(x, options, preset, labels, threads, verbose, match.call())
}

requirements <- c(
  perplexity = "a number at least 1, at most 1e9",
  theta = "a number at least 0",
  method = "\"auto\", \"barnes-hut\", \"mesh\" or \"exact\"",
  dims = "a whole number from 2 to 50",
  max_iter = "a whole number from 1 to 1000000000",
  stop_lying_iter = "a whole number from 0 to 2147483647",
  mom_switch_iter = "a whole number from 0 to 2147483647",
  seed = "a whole number from 0 to 2147483647",
  learning_rate = "a number above 0, at most 1e9, or \"auto\"",
  exaggeration = "a number at least 1, at most 1e6",
  start_spread = "a number above 0, at most 1e6",
  momentum = "a number at least 0, below 1",
  final_momentum = "a number at least 0, below 1",
  metric = "\"euclidean\", \"pearson\", \"cosine\", \"spearman\" or \"precomputed\"",
  pca = "a whole number from 0 to 2147483647",
  affinity = "\"perplexity\" or \"uniform\"",
  neighbours = "a whole number from 1 to 2147483647",
  multiscale = "up to 8 different numbers, each at least 1, at most 1e9",
  start = "\"random\", \"pca\", \"sample\" or a matrix of coordinates",
  schedule = "\"classic\" or \"annealed\"",
  hold_iter = "a whole number from 0 to 2147483647",
  release_iter = "a whole number from 0 to 2147483647",
  gains = "\"adaptive\" or \"constant\"",
  stop_when = "a number at least 0, below 1"
)
# end of the options of a fit
