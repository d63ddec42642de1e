"""Maps of annotated data."""

import numpy as np
import pytest

import ovik


class StandIn:
    """Annotated data, as far as the package looks at them."""

    def __init__(self, X, **obsm):
        self.X = X
        self.obsm = obsm
        self.uns = {}


def test_map_and_parameters_are_written(points):
    adata = StandIn(points)
    assert ovik.pp_tsne(adata, n_iter=3, perplexity=10.0, n_jobs=1) is None
    tsne = ovik.TSNE(n_iter=3, perplexity=10.0).fit(points)
    assert np.array_equal(adata.obsm["X_tsne"], tsne.embedding_)
    assert adata.uns["tsne"]["kl_divergence"] == tsne.kl_divergence_
    params = adata.uns["tsne"]["params"]
    assert (params["use_rep"], params["perplexity"], params["seed"]) == ("X", 10.0, 11)
    assert None not in params.values()


def test_principal_components_are_taken_where_they_are(points):
    adata = StandIn(points * 5, X_pca=points[:, :3])
    ovik.pp_tsne(adata, n_iter=3)
    expected = ovik.TSNE(n_iter=3).fit_transform(points[:, :3])
    assert np.array_equal(adata.obsm["X_tsne"], expected)
    assert adata.uns["tsne"]["params"]["use_rep"] == "X_pca"


def test_representation_and_key_are_chosen(points):
    adata = StandIn(points, X_pca=points[:, :3], X_other=points[:, 2:])
    ovik.pp_tsne(adata, "X", "X_tsne_of_all", n_iter=3)
    ovik.pp_tsne(adata, "X_other", "other", n_iter=3, random_state=4)
    expected = ovik.TSNE(n_iter=3, seed=4).fit_transform(points[:, 2:])
    assert np.array_equal(adata.obsm["X_tsne_of_all"], ovik.TSNE(n_iter=3).fit_transform(points))
    assert np.array_equal(adata.obsm["other"], expected)
    assert adata.uns["tsne_of_all"]["params"]["use_rep"] == "X"
    assert adata.uns["other"]["params"]["seed"] == 4


def test_representation_that_is_not_there_is_refused(points):
    adata = StandIn(points, X_umap=points)
    with pytest.raises(ValueError, match="has no 'X_scvi': it has 'X_umap', and \"X\" is adata.X"):
        ovik.pp_tsne(adata, "X_scvi")
    assert adata.uns == {}


def test_real_annotated_data_are_written_and_read_again(points, tmp_path):
    anndata = pytest.importorskip("anndata")
    sparse = pytest.importorskip("scipy.sparse")
    adata = anndata.AnnData(sparse.csr_matrix(points.astype(np.float32)))
    ovik.pp_tsne(adata, n_iter=3, learning_rate="auto")
    adata.write_h5ad(tmp_path / "map.h5ad")
    again = anndata.read_h5ad(tmp_path / "map.h5ad")
    expected = ovik.TSNE(n_iter=3).fit_transform(points.astype(np.float32))
    assert np.array_equal(again.obsm["X_tsne"], expected)
    # The rate of some step, given as a number, would not lead to this map.
    assert again.uns["tsne"]["params"]["learning_rate"] == "auto"
