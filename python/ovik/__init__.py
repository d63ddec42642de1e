"""t-SNE of gene expression matrices: exact or Barnes-Hut, the same bytes on every run.

>>> import ovik
>>> matrix = ovik.read_matrix("expression.tsv")
>>> tsne = ovik.TSNE(perplexity=30).fit(matrix)
>>> ovik.page(tsne).save("map.html")
"""

from ._agreement import Agreement, agreement
from ._anndata import pp_tsne
from ._core import __version__
from ._enrichment import EnrichedTerm, Enrichment, enrich
from ._genes import Gene, gene_function
from ._matrix import Matrix, MatrixNote, read_matrix
from ._noise import AgainstNoise, against_noise
from ._page import Page, page
from ._plot import plot
from ._reliability import Reliability
from ._stability import ClusterPair, Stability, stability
from ._tsne import TSNE

__all__ = [
    "TSNE",
    "AgainstNoise",
    "Agreement",
    "ClusterPair",
    "EnrichedTerm",
    "Enrichment",
    "Gene",
    "Matrix",
    "MatrixNote",
    "Page",
    "Reliability",
    "Stability",
    "__version__",
    "against_noise",
    "agreement",
    "enrich",
    "gene_function",
    "page",
    "plot",
    "pp_tsne",
    "read_matrix",
    "stability",
]
