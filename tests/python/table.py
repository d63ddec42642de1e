"""A stand-in for data frames."""

import numpy as np


class Table:
    """A data frame, as far as the estimator looks at it."""

    def __init__(self, values, columns):
        self.values = values
        self.columns = columns

    def __array__(self, dtype=None):
        return np.asarray(self.values, dtype)
