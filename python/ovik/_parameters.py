"""The parameters of a fit, from the list of options of the library."""

from __future__ import annotations

import os
from collections.abc import Callable, Sequence
from typing import Any, Literal, TypeAlias

import numpy as np
from numpy.typing import ArrayLike, NDArray

RandomState: TypeAlias = int | np.random.RandomState | np.random.Generator | None
Preset: TypeAlias = Literal["classic", "refined"]
NeighbourGraph: TypeAlias = str | os.PathLike[str] | tuple[ArrayLike, ArrayLike, ArrayLike] | Any
Callback: TypeAlias = Callable[[int, float, NDArray[np.float64]], Any]
OnInterrupt: TypeAlias = Literal["raise", "keep"]


# options of a fit, by scripts/option-texts
class FitParameters:
    """The options of a fit as attributes."""

    def __init__(
        self,
        n_components: int = 2,
        *,
        perplexity: float = 20.0,
        theta: float = 0.5,
        method: Literal["auto", "barnes-hut", "mesh", "exact"] = "auto",
        n_iter: int = 1000,
        stop_lying_iter: int = 250,
        mom_switch_iter: int = 250,
        seed: int = 11,
        learning_rate: float | Literal["auto"] = 200.0,
        exaggeration: float = 12.0,
        start_spread: float = 0.0001,
        momentum: float = 0.5,
        final_momentum: float = 0.8,
        metric: Literal["euclidean", "pearson", "cosine", "spearman", "precomputed"] = "euclidean",
        pca: int = 0,
        affinity: Literal["perplexity", "uniform"] = "perplexity",
        neighbours: int = 15,
        multiscale: Sequence[float] | None = None,
        neighbour_search: Literal["exact", "approximate"] = "exact",
        init: Literal["random", "pca", "sample"] | ArrayLike = "random",
        schedule: Literal["classic", "annealed"] = "classic",
        hold_iter: int = 125,
        release_iter: int = 125,
        gains: Literal["adaptive", "constant"] = "adaptive",
        stop_when: float = 0.0,
        numerics: Literal["platform", "portable"] = "platform",
        random_state: RandomState = None,
        preset: Preset = "classic",
        neighbour_graph: NeighbourGraph = None,
        callbacks: Callback | Sequence[Callback] | None = None,
        callbacks_every_iters: int = 50,
        on_interrupt: OnInterrupt = "raise",
        quality: int | None = None,
        reliability: bool = False,
        seeds: int = 1,
        n_jobs: int | None = -1,
        verbose: bool = False,
    ) -> None:
        self.n_components = n_components
        self.perplexity = perplexity
        self.theta = theta
        self.method = method
        self.n_iter = n_iter
        self.stop_lying_iter = stop_lying_iter
        self.mom_switch_iter = mom_switch_iter
        self.seed = seed
        self.learning_rate = learning_rate
        self.exaggeration = exaggeration
        self.start_spread = start_spread
        self.momentum = momentum
        self.final_momentum = final_momentum
        self.metric = metric
        self.pca = pca
        self.affinity = affinity
        self.neighbours = neighbours
        self.multiscale = multiscale
        self.neighbour_search = neighbour_search
        self.init = init
        self.schedule = schedule
        self.hold_iter = hold_iter
        self.release_iter = release_iter
        self.gains = gains
        self.stop_when = stop_when
        self.numerics = numerics
        self.random_state = random_state
        self.preset = preset
        self.neighbour_graph = neighbour_graph
        self.callbacks = callbacks
        self.callbacks_every_iters = callbacks_every_iters
        self.on_interrupt = on_interrupt
        self.quality = quality
        self.reliability = reliability
        self.seeds = seeds
        self.n_jobs = n_jobs
        self.verbose = verbose

    def _fit_options(self) -> dict[str, Any]:
        return {
            "n_components": self.n_components,
            "perplexity": self.perplexity,
            "theta": self.theta,
            "method": self.method,
            "n_iter": self.n_iter,
            "stop_lying_iter": self.stop_lying_iter,
            "mom_switch_iter": self.mom_switch_iter,
            "seed": self.seed,
            "learning_rate": self.learning_rate,
            "exaggeration": self.exaggeration,
            "start_spread": self.start_spread,
            "momentum": self.momentum,
            "final_momentum": self.final_momentum,
            "metric": self.metric,
            "pca": self.pca,
            "affinity": self.affinity,
            "neighbours": self.neighbours,
            "multiscale": self.multiscale,
            "neighbour_search": self.neighbour_search,
            "init": self.init,
            "schedule": self.schedule,
            "hold_iter": self.hold_iter,
            "release_iter": self.release_iter,
            "gains": self.gains,
            "stop_when": self.stop_when,
            "numerics": self.numerics,
        }


DESCRIPTIONS = """\
    n_components : int, default 2
        Dimensions of the embedding, 2 to 50.
    perplexity : float, default 20.0
        Effective number of neighbours of a row, at least 1, at most 1e9.
    theta : float, default 0.5
        Accuracy of the Barnes-Hut method, or 0 for the exact method, at least 0.
    method : {"auto", "barnes-hut", "mesh", "exact"}, default "auto"
        How forces are computed; auto goes by theta.
    n_iter : int, default 1000
        Last iteration, counted from 0, 1 to 1000000000.
    stop_lying_iter : int, default 250
        Iteration at which early exaggeration ends, at least 0.
    mom_switch_iter : int, default 250
        Iteration after which the momentum is the final one, at least 0.
    seed : int, default 11
        Seed of the random start and of the neighbour search, at least 0.
    learning_rate : float or "auto", default 200.0
        Length of a step, times gain and gradient, above 0, at most 1e9.
        "auto" is n_samples / the exaggeration of the step, at least 200.
    exaggeration : float, default 12.0
        Factor of the similarities until early exaggeration ends, at least 1, at most 1e6.
    start_spread : float, default 0.0001
        Standard deviation of a start, where it is widest, but for coordinates, above 0, at most 1e6.
    momentum : float, default 0.5
        Share of a step that the next one repeats, before the momentum switch, at least 0, below 1.
    final_momentum : float, default 0.8
        Share of a step that the next one repeats, after the momentum switch, at least 0, below 1.
    metric : {"euclidean", "pearson", "cosine", "spearman", "precomputed"}, default "euclidean"
        Distance between rows.
    pca : int, default 0
        Principal components in the place of the columns, or 0 for the columns, at least 0.
    affinity : {"perplexity", "uniform"}, default "perplexity"
        Similarities of a row with its neighbours.
    neighbours : int, default 15
        Nearest neighbours that get uniform affinities, at least 1.
    multiscale : list of float or None, default None
        Perplexities whose affinities are averaged, each at least 1, at most 1e9.
    neighbour_search : {"exact", "approximate"}, default "exact"
        Whether all nearest neighbours are found, or nearly all in less time.
    init : {"random", "pca", "sample"} or array-like of shape (n_samples, n_components), default "random"
        Where the points of the map start.
    schedule : {"classic", "annealed"}, default "classic"
        Course of exaggeration, momentum and learning rate.
    hold_iter : int, default 125
        Iterations at full exaggeration, of the annealed schedule, at least 0.
    release_iter : int, default 125
        Iterations in which exaggeration then falls to 1, at least 0.
    gains : {"adaptive", "constant"}, default "adaptive"
        Factor of each coordinate's learning rate.
    stop_when : float, default 0.0
        Share of the cost that 50 iterations have to gain for the fit to go on, or 0, at least 0, below 1.
    numerics : {"platform", "portable"}, default "platform"
        Whether the map is bound to this platform, or the same on every machine.
"""
# end of the options of a fit
