"""The estimator."""

from __future__ import annotations

import inspect
import sys
import warnings
from typing import Any, Self

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._agreement import Agreement
from ._input import (
    Input,
    as_input,
    check_finite,
    check_perplexity,
    columns_as_fitted,
    digest_of,
    refuse_sparse_distances,
)
from ._matrix import Matrix
from ._output import CONTAINERS, Container, chosen_container, contained, feature_names_out, require_fitted
from ._parameters import DESCRIPTIONS, FitParameters
from ._placement import warn_of_distant
from ._reliability import Reliability
from ._settings import (
    PRESETS,
    is_default,
    neighbour_graph_of,
    one_callback,
    one_of,
    quality_neighbours,
    seed_of,
    start_of,
    thread_count,
    wants_reliability,
    whole_number,
)

_LARGEST_INT = 2**31 - 1


class TSNE(FitParameters):
    """t-SNE: embeds the rows of a matrix so that rows with similar values lie close together.

    The same input and parameters give the same bytes on every run, for any number
    of threads, and the same as the command ``ovik-tsne`` gives.

    Parameters
    ----------
{options}    random_state : None, int, RandomState or Generator, default None
        The seed as others call it: a whole number, or what one is drawn from. None leaves it to
        `seed`, which is always the same.
    preset : {"classic", "refined"}, default "classic"
        What the parameters above stand for where they have their default: the classical run, or
        what gives better and more stable maps. A parameter with another value than its default
        keeps it; one with its default counts as not given.
    neighbour_graph : path, sparse matrix or tuple of three arrays, default None
        Distances of the rows from their neighbours, taken instead of a search: a Matrix Market file,
        a sparse matrix of shape (n_samples, n_samples), or the arrays ``(data, indices, indptr)`` of
        one in compressed rows. An entry that is stored is a distance, also where it is 0. Not for
        ``theta=0``, nor beside a `metric`, unless ``init="pca"`` or `quality` compares rows by it.
    callbacks : function or list of functions, default None
        Each is called as ``callback(iteration, error, embedding)``, with the cost and a copy of the
        embedding; if one returns something true, the fit ends there. The cost is
        as `costs_` has it. An exception ends the fit, too, and leaves `fit`.
    callbacks_every_iters : int, default 50
        The callbacks see every iteration that this divides, and the last one.
    on_interrupt : {"raise", "keep"}, default "raise"
        What Ctrl-C does: ends the fit by KeyboardInterrupt, or ends it with a warning and keeps the
        embedding as it stands.
    quality : int, default None
        How many nearest neighbours of each row `trustworthiness_` and `knn_recall_` are about, less
        than half of n_samples. None leaves them unmeasured.
    reliability : bool, default False
        Whether `reliability_` tells of each row how far to trust its place, of 30 rows or more.
    seeds : int, default 1
        How many fits are made, from `seed` and the seeds that follow, on one neighbour search. The map of
        lowest cost is kept. Only with a random start, and without callbacks.
    n_jobs : int or None, default -1
        Threads; -1 for one per core, or what ``OMP_NUM_THREADS`` says, -2 for one fewer than cores,
        and so on; None for one. They change the time, never the result.
    verbose : bool, default False
        Whether the engine's progress is shown, on the standard output and standard error of the
        process.

    Attributes
    ----------
    embedding_ : ndarray of shape (n_samples, n_components), float64
        Where the rows lie. Axes and orientation mean nothing.
    kl_divergence_ : float
        Cost of the embedding: Kullback-Leibler divergence from the similarities of the rows, without
        exaggeration, in nats.
    costs_ : ndarray of shape (n_iter_ + 1,), float64
        Cost of every iteration from 0 on. Under the classic schedule it is against the exaggerated
        similarities until early exaggeration ends; under the annealed one all are without
        exaggeration.
    n_iter_ : int
        The iteration done last.
    seed_ : int
        The seed that was used; of several, the one whose map was kept.
    seed_costs_ : dict of int to float
        The cost of the map of each seed; only with several `seeds`.
    seed_agreement_ : Agreement
        How far the maps of the seeds agree, as `agreement` measures it; only with several `seeds`.
    learning_rate_ : float
        The learning rate of the last step; "auto" changes it with the exaggeration.
    trustworthiness_, knn_recall_ : float
        Whether neighbours in the embedding are neighbours in the input (Venna and Kaski, 2001), and
        the share of the neighbours in the input that are neighbours in the embedding; only with
        `quality`.
    reliability_ : Reliability
        Of each row what the embedding keeps of its neighbours, its share of the cost, and its false and
        torn neighbours; only with `reliability`.
    neighbour_recall_ : float
        The share of the nearest neighbours that were found, measured on a thousand rows; only where
        `neighbour_search` is "approximate". Not there, and with a warning, where the
        rows do not bear that and the search was exact.
    n_features_in_ : int
        Columns of the input.
    feature_names_in_ : ndarray of shape (n_features_in_,), object
        Names of the columns; only after a fit on a `Matrix` that has some, or on a table whose column
        names are all strings.
    row_names_ : ndarray of shape (n_samples,), object
        Names of the rows; only after a fit on a `Matrix`, or on a table whose index is all strings.

    Notes
    -----
    Fits may run at once, each in a thread of its own and with the interpreter lock free. Ctrl-C ends
    one in the main thread after the iteration at hand, or with the first one.

    `transform` places further rows on the embedding, which stays as it is. Rows of the fit get places
    of their own there, which are near those in `embedding_` but not the same. For that a fitted object
    keeps a copy of its input.

    References
    ----------
    van der Maaten and Hinton, "Visualizing data using t-SNE", JMLR 9:2579, 2008.
    van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014.

    Examples
    --------
    >>> embedding = TSNE(perplexity=30).fit_transform(X)
    """

    # What tells scikit-learn, and `clone`, that an output was set.
    _sklearn_output_config: dict[str, Container]
    _caption: list[tuple[str, str]]
    _fitted_options: dict[str, Any]
    _fitted_digest: bytes
    _fitted_seeds: int
    _fitted_by_graph: bool
    _map: dict[str, Any]

    embedding_: NDArray[np.float64]
    kl_divergence_: float
    costs_: NDArray[np.float64]
    n_iter_: int
    seed_: int
    learning_rate_: float
    trustworthiness_: float
    knn_recall_: float
    reliability_: Reliability
    n_features_in_: int
    feature_names_in_: NDArray[np.object_]
    row_names_: NDArray[np.object_]

    def fit(self, X: ArrayLike | Matrix, y: Any = None) -> Self:
        """Embed the rows of a matrix.

        Parameters
        ----------
        X : array-like of shape (n_samples, n_features)
            With ``metric="precomputed"`` of shape (n_samples, n_samples): the distances of all rows
            from all rows, symmetric, the diagonal 0.
            At least 3 rows and 1 column of finite numbers: an array, lists, a data frame, a sparse
            matrix, what `read_matrix` gives. Not changed, and not copied before the engine's own
            copy if it is a C-contiguous float64 array; sparse ones are made dense.
        y : ignored

        Returns
        -------
        TSNE
            This object, with its attributes set. A fit that fails leaves them as they were.

        Raises
        ------
        ValueError
            If a parameter is out of its range, or X cannot be embedded: not two-dimensional, too few
            rows for the perplexity, values that are not finite or have no common scale, rows all
            equal.
        MemoryError
            If the fit cannot have its memory.
        RuntimeError
            If the embedding gets out of range.
        KeyboardInterrupt
            On Ctrl-C, unless `on_interrupt` is "keep".
        """
        self._fit(self._input(X))
        return self

    def fit_transform(self, X: ArrayLike | Matrix, y: Any = None) -> NDArray[np.float64]:
        """Embed the rows of a matrix and return `embedding_`; see `fit`.

        After ``set_output(transform="pandas")`` it is a data frame with the index of X.
        """
        container = chosen_container(getattr(self, "_sklearn_output_config", {}).get("transform"))
        given = self._input(X)
        self._fit(given)
        result: NDArray[np.float64] = contained(
            self.embedding_, container, given.index, self.get_feature_names_out()
        )
        return result

    def transform(self, X: ArrayLike | Matrix) -> NDArray[np.float64]:
        """Place further rows on the embedding of the last fit, which stays as it is.

        Each row is placed by itself: among its neighbours in the input of the fit, where its own
        cost beside all fixed points is lowest. Its place does not depend on the other rows.

        Parameters
        ----------
        X : array-like of shape (n_rows, n_features)
            Rows of the columns of the fit: matched by name, in any order, where both have names.

        Returns
        -------
        ndarray of shape (n_rows, n_components)
            The places; after ``set_output(transform="pandas")`` a data frame with the index of X.

        Warns
        -----
        UserWarning
            Of rows that are farther from all rows of the fit than any of these from its nearest, and of
            rows for which no place is better than one infinitely far away: such places mean nothing.

        Raises
        ------
        ValueError
            If there was no fit, if columns are missing or additional, if values are not finite or
            too far from those of the fit to be measured, or if the fit was one by options with which
            rows cannot be placed: distances, principal components, a neighbour graph, other
            affinities than those of one perplexity; if a row has no correlation with any other.
        """
        require_fitted(self)
        container = chosen_container(getattr(self, "_sklearn_output_config", {}).get("transform"))
        if self._map["barring"]:
            raise ValueError(
                f"rows cannot be placed on an embedding that was made with {self._map['barring']}\n"
                "Fit one without it."
            )
        given = as_input(X, fewest_rows=1)
        values = columns_as_fitted(
            given, self.n_features_in_, getattr(self, "feature_names_in_", None)
        )
        check_finite(values)
        threads = thread_count(self.n_jobs)
        places, distances, is_lost = _core.place(values, self.embedding_, self._map, threads)
        if "reach" not in self._map:
            self._map["reach"] = _core.reach(self._map["input"], threads)
        warn_of_distant(given.index, distances, self._map["reach"], is_lost)
        result: NDArray[np.float64] = contained(
            places, container, given.index, self.get_feature_names_out()
        )
        return result

    def set_output(self, *, transform: Container | None = None) -> Self:
        """Set what `fit_transform` and `transform` return.

        Parameters
        ----------
        transform : {"default", "pandas"}, optional
            An array, or a data frame with the index of the input. None changes nothing.

        Returns
        -------
        TSNE
            This object.
        """
        if transform is not None:
            one_of("transform", transform, CONTAINERS)
            self._sklearn_output_config = {"transform": transform}
        return self

    def get_feature_names_out(self, input_features: ArrayLike | None = None) -> NDArray[np.object_]:
        """Names of the columns of the embedding: ``"tsne0"``, ``"tsne1"`` and so on.

        Parameters
        ----------
        input_features : array-like of str, optional
            Only held against the columns of the last fit.

        Raises
        ------
        ValueError
            If there was no fit, or one of other columns.
        """
        return feature_names_out(self, input_features)

    def get_params(self, deep: bool = True) -> dict[str, Any]:
        """The parameters of the constructor, by name; `deep` makes no difference."""
        return {name: getattr(self, name) for name in self._parameters()}

    def set_params(self, **params: Any) -> Self:
        """Set parameters of the constructor.

        Returns
        -------
        TSNE
            This object.

        Raises
        ------
        ValueError
            If one is not a parameter; nothing is set then.
        """
        for name in params:
            if name not in self._parameters():
                raise ValueError(
                    f"{name!r} is not a parameter of TSNE, which has " + ", ".join(self._parameters())
                )
        for name, value in params.items():
            setattr(self, name, value)
        return self

    def __repr__(self) -> str:
        changed = (
            f"{name}={getattr(self, name)!r}"
            for name, parameter in self._parameters().items()
            if getattr(self, name) is not parameter.default
        )
        return f"TSNE({', '.join(changed)})"

    @classmethod
    def _parameters(cls) -> dict[str, inspect.Parameter]:
        parameters = dict(inspect.signature(cls.__init__).parameters)
        del parameters["self"]
        return parameters

    def _input(self, X: ArrayLike | Matrix) -> Input:
        if self.metric == "precomputed":
            refuse_sparse_distances(X)
        return as_input(X)

    def _fit(self, given: Input) -> None:
        n_samples, n_features = given.values.shape
        start = start_of(self.init, (n_samples, self.n_components), given.index)
        options = self._settled_options(n_samples, n_features, start is not None)
        manner = self._checked_manner(n_samples, start, options["init"])
        check_finite(given.values)
        if options["perplexity"] is not None:
            check_perplexity(options["perplexity"], n_samples)
        if self.verbose:
            sys.stdout.flush()
        digest = digest_of(given.values)
        outcome = _core.embed(given.values, options, manner)
        # Warnings come last: where they are errors, the embedding is not lost.
        self._take_over(given, options, outcome)
        self._fitted_digest = digest
        self._fitted_seeds = manner["seeds"]
        self._fitted_by_graph = manner["neighbours"] is not None
        for note in (outcome["note"], outcome["neighbours_note"], outcome["start_note"]):
            if note:
                warnings.warn(note, stacklevel=3)
        if outcome["is_interrupted"] and outcome["iteration"] < options["n_iter"]:
            self._warn_of_interruption(outcome["iteration"], outcome["is_past_exaggeration"])

    def _settled_options(
        self, n_samples: int, n_features: int, has_start: bool
    ) -> dict[str, Any]:
        """The options of the fit, None where one has no effect beside the others.

        What a parameter says counts where it is not the default; else it is as the preset says.
        """
        default = {name: parameter.default for name, parameter in self._parameters().items()}
        given = {
            name: value
            for name, value in self._fit_options().items()
            if not is_default(value, default[name])
        }
        given["seed"] = seed_of(self.random_state, self.seed, default["seed"])
        if has_start:
            given["init"] = "given"
        one_of("preset", self.preset, PRESETS)
        options: dict[str, Any] = _core.settle_options(given, self.preset, n_samples, n_features)
        return options

    def _checked_manner(
        self, n_samples: int, start: NDArray[np.float64] | None, kind_of_start: str
    ) -> dict[str, Any]:
        """How the fit is made, beside its options."""
        return {
            "threads": thread_count(self.n_jobs),
            "verbose": bool(self.verbose),
            "init": start,
            "neighbours": neighbour_graph_of(self.neighbour_graph, n_samples, self.metric),
            "quality": quality_neighbours(self.quality, n_samples),
            "reliability": wants_reliability(self.reliability, n_samples),
            "seeds": self._checked_seeds(kind_of_start),
            "callback": one_callback(self.callbacks),
            "callback_every": whole_number(
                "callbacks_every_iters", self.callbacks_every_iters, 1, _LARGEST_INT
            ),
            "keeps_interrupted": one_of("on_interrupt", self.on_interrupt, ("raise", "keep")) == "keep",
        }

    def _checked_seeds(self, kind_of_start: str) -> int:
        seeds = whole_number("seeds", self.seeds, 1, 1000)
        if seeds > 1 and self.callbacks is not None:
            raise ValueError(f"seeds={seeds}: callbacks follow one fit\nLeave one of them out.")
        if seeds > 1 and kind_of_start not in ("random", "sample"):
            raise ValueError(
                f"seeds={seeds}: every seed has the same start, and so the same map, where init is not "
                '"random"\nLeave seeds out, or give init="random".'
            )
        return seeds

    def _warn_of_interruption(self, iteration: int, is_past_exaggeration: bool) -> None:
        text = f"the fit was interrupted at iteration {iteration} of {self.n_iter}, and is kept so"
        if not is_past_exaggeration:
            text += ": early exaggeration has not ended, so the groups stand closer than they should"
        warnings.warn(text, stacklevel=4)

    def _take_over(self, given: Input, options: dict[str, Any], outcome: dict[str, Any]) -> None:
        """Set the attributes of a fit."""
        self.embedding_ = outcome["embedding"]
        self.kl_divergence_ = outcome["cost"]
        self.costs_ = outcome["costs"]
        self.n_iter_ = outcome["iteration"]
        self.seed_ = outcome["seed"]
        self.learning_rate_ = outcome["learning_rate"]
        self.n_features_in_ = given.values.shape[1]
        self._map = outcome["map"]
        if self.neighbour_graph is not None:
            self._map = {"barring": "neighbour_graph"}
        self._fitted_options = {**options, "seed": outcome["seed"]}
        self._caption = outcome["caption"]
        self._row_keys = None if given.index is None else [str(key) for key in given.index]
        for name, value in (
            ("seed_costs_", dict(outcome["seeds"][0]) if outcome["seeds"] else None),
            ("seed_agreement_", Agreement(*outcome["seeds"][1:]) if outcome["seeds"] else None),
            ("neighbour_recall_", outcome["neighbour_recall"]),
            ("trustworthiness_", outcome["trustworthiness"]),
            ("knn_recall_", outcome["knn_recall"]),
            ("reliability_", outcome["reliability"] and Reliability(*outcome["reliability"])),
            ("feature_names_in_", given.feature_names),
            ("row_names_", given.row_names),
        ):
            if value is not None:
                setattr(self, name, value)
            elif hasattr(self, name):
                delattr(self, name)


if TSNE.__doc__:
    TSNE.__doc__ = TSNE.__doc__.replace("{options}", DESCRIPTIONS)
