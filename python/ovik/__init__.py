"""t-SNE of gene expression matrices: exact or Barnes-Hut, the same bytes on every run.

>>> import ovik
>>> matrix = ovik.read_matrix("expression.tsv")
>>> tsne = ovik.TSNE(perplexity=30).fit(matrix)
>>> tsne.embedding_
"""

from ._core import __version__
from ._genes import Gene, gene_function
from ._matrix import Matrix, read_matrix
from ._tsne import TSNE

__all__ = [
    "TSNE",
    "Gene",
    "Matrix",
    "__version__",
    "gene_function",
    "read_matrix",
]
