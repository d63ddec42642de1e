import numpy as np
from numpy.typing import NDArray

__version__: str

def embed(
    X: NDArray[np.float64],
    *,
    n_components: int,
    perplexity: float,
    theta: float,
    n_iter: int,
    stop_lying_iter: int,
    mom_switch_iter: int,
    threads: int,
    verbose: bool,
) -> tuple[NDArray[np.float64], float, int, str]: ...
def read_matrix(
    path: bytes, delimiter: str | None, missing: str
) -> tuple[NDArray[np.float64], list[bytes], list[bytes], list[bytes]]: ...
def find_gene(name: str) -> tuple[str, str, str] | None: ...
