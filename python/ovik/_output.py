"""The container that an embedding is returned in."""

from __future__ import annotations

import sys
from typing import Any, Literal

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._settings import one_of

Container = Literal["default", "pandas"]
CONTAINERS: tuple[Container, ...] = ("default", "pandas")


class _NotFitted(ValueError, AttributeError):
    """What a fit would have set is asked for before it."""


def chosen_container(chosen: str | None) -> str:
    """The container that was set, else the one that scikit-learn is set to where it is in use."""
    if chosen is None:
        learn: Any = sys.modules.get("sklearn")
        config = learn.get_config() if hasattr(learn, "get_config") else {}
        chosen = config.get("transform_output", "default")
    return one_of("the output of transformers", chosen, CONTAINERS)


def contained(embedding: NDArray[np.float64], container: str, index: Any, columns: Any) -> Any:
    """The embedding as an array, or as a data frame with the index of the input."""
    if container == "default":
        return embedding
    import pandas

    return pandas.DataFrame(embedding, index=index, columns=columns)


def require_fitted(tsne: Any) -> None:
    """Refuse what only a fit gives."""
    if not hasattr(tsne, "embedding_"):
        raise _NotFitted("this TSNE has not been fitted yet: call fit first")


def feature_names_out(tsne: Any, input_features: ArrayLike | None) -> NDArray[np.object_]:
    """Names of the columns of an embedding."""
    require_fitted(tsne)
    if input_features is not None:
        given = np.asarray(input_features, dtype=object)
        seen = getattr(tsne, "feature_names_in_", None)
        if seen is not None and not np.array_equal(seen, given):
            raise ValueError("input_features is not equal to feature_names_in_")
        if len(given) != tsne.n_features_in_:
            raise ValueError(
                "input_features should have length equal to number of features "
                f"({tsne.n_features_in_}), got {len(given)}"
            )
    return np.array([f"tsne{n}" for n in range(tsne.embedding_.shape[1])], dtype=object)
