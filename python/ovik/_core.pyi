from typing import Any

import numpy as np
from numpy.typing import NDArray

__version__: str

def embed(
    X: NDArray[np.float64], options: dict[str, Any], threads: int, verbose: bool
) -> tuple[NDArray[np.float64], float, int, str]: ...
def check_options(options: dict[str, Any]) -> None: ...
def read_matrix(
    path: bytes, delimiter: str | None, missing: str
) -> tuple[NDArray[np.float64], list[bytes], list[bytes], list[bytes]]: ...
def find_gene(name: str) -> tuple[str, str, str] | None: ...
