#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "annotation/enrichment_table.h"
#include "annotation/gene_name_list.h"
#include "annotation/gene_names.h"
#include "annotation/go_slim.h"
#include "annotation/row_finder.h"
#include "stats/given_neighbours.h"
#include "stats/map_agreement.h"
#include "stats/option_texts.h"
#include "stats/row_placement.h"
#include "util/available_memory.h"
#include "util/input_error.h"
#include "util/threads.h"

#include "python/src/fit.h"
#include "python/src/matrix_file.h"
#include "python/src/noise.h"
#include "python/src/options.h"
#include "python/src/own_thread.h"
#include "python/src/page.h"
#include "python/src/stability.h"

/// The module `ovik._core`: the engine behind the package's Python files, which check arguments.

namespace ovik::python {

namespace {

namespace py = pybind11;

using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;

/// Texts of files need not be UTF-8.
py::str decoded(const char* text) {
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::strlen(text)), "replace"));
}

/// `InputError` becomes ValueError, `std::system_error` OSError; the others are as pybind11 has
/// them.
void translate(std::exception_ptr thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const InputError& error) {
        PyErr_SetObject(PyExc_ValueError, decoded(error.what()).ptr());
    } catch (const std::system_error& error) {
        const py::tuple arguments = py::make_tuple(error.code().value(), decoded(error.what()));
        PyErr_SetObject(PyExc_OSError, arguments.ptr());
    }
}

/// Shows a state to a function of Python, with a copy of the embedding.
///
/// @return whether the function asks for the end of the fit
bool shows_to(const py::object& function, const FitState& state, const py::ssize_t* shape) {
    const Array embedding({shape[0], shape[1]}, state.embedding.data());
    const py::object answer = function(state.reached.iteration, state.reached.cost, embedding);
    const int is_true = PyObject_IsTrue(answer.ptr());
    if (is_true < 0) {
        throw py::error_already_set();
    }
    return is_true == 1;
}

/// An array that takes values over.
Array as_array(std::unique_ptr<double[]> values, std::size_t rows, std::size_t columns) {
    double* const array = values.release();
    const py::capsule owner(array, [](void* owned) { delete[] static_cast<double*>(owned); });
    return Array({rows, columns}, array, owner);
}

/// What `place` needs of a fit, by name; where rows cannot be placed, the option that bars it.
///
/// @param outcome  its input is taken
py::dict described_map(Outcome& outcome, const FitOptions& options) {
    using namespace py::literals;  // NOLINT(google-build-using-namespace): that is their use
    std::string barring;
    visit_fit_options(options, [&barring](const auto& option) {
        if (barring.empty() && !option.isPreset() &&
            bars_placement(option.words.name, value_text(option))) {
            barring = option.words.python;
        }
    });
    if (!barring.empty()) {
        return py::dict("barring"_a = barring);
    }
    const InputScale& scale = outcome.fit.report.scale;
    const std::size_t columns = scale.means.size();
    const std::size_t rows =
        outcome.fit.embedding.size() / static_cast<std::size_t>(options.out_dims);
    return py::dict("input"_a = as_array(std::move(outcome.input), rows, columns),
                    "centres"_a = scale.means,
                    "factor"_a = scale.factor,
                    "perplexity"_a = options.perplexity,
                    "metric"_a = static_cast<int>(options.metric),
                    "numerics"_a = static_cast<int>(options.numerics),
                    "barring"_a = barring);
}

/// What fits of several seeds came to: seed and cost of each, disparity and shared neighbours of
/// their maps, NaN where there are none; None of one seed.
py::object described_seeds(const std::optional<SeedReport>& seeds) {
    if (!seeds) {
        return py::none();
    }
    py::list runs;
    for (const SeedRun& run : seeds->runs) {
        runs.append(py::make_tuple(run.seed, run.final_cost));
    }
    const double none = std::nan("");
    return py::make_tuple(runs,
                          seeds->agreement ? seeds->agreement->disparity : none,
                          seeds->agreement ? seeds->agreement->shared_neighbours : none);
}

/// The numbers of columns, by name.
py::dict described_columns(const std::vector<RowNumbers>& columns) {
    py::dict named;
    for (const RowNumbers& column : columns) {
        named[py::str(column.name)] =
            Array(static_cast<py::ssize_t>(column.values.size()), column.values.data());
    }
    return named;
}

/// How far each row can be trusted: columns by name, then false and torn neighbours; None where
/// that was not asked for.
py::object described_reliability(const std::optional<RowReliability>& reliability) {
    if (!reliability) {
        return py::none();
    }
    return py::make_tuple(
        described_columns(reliability->columns), reliability->falsely_near, reliability->torn);
}

/// What became of a fit, by name.
///
/// @param outcome  its input is taken
py::dict described(Outcome& outcome, const FitOptions& options, const py::ssize_t* shape) {
    using namespace py::literals;  // NOLINT(google-build-using-namespace): that is their use
    const FitReport& report = outcome.fit.report;
    const auto quality = [&](double NeighbourhoodQuality::*value) {
        return outcome.quality ? py::float_((*outcome.quality).*value) : py::object(py::none());
    };
    return py::dict(
        "embedding"_a = Array({shape[0], shape[1]}, outcome.fit.embedding.data()),
        "cost"_a = report.final_cost,
        "costs"_a = Array(static_cast<py::ssize_t>(report.costs.size()), report.costs.data()),
        "iteration"_a = report.reached.iteration,
        "seed"_a = outcome.seed,
        "seeds"_a = described_seeds(report.seeds),
        "learning_rate"_a = outcome.learning_rate,
        "is_past_exaggeration"_a = outcome.is_past_exaggeration,
        "trustworthiness"_a = quality(&NeighbourhoodQuality::trustworthiness),
        "knn_recall"_a = quality(&NeighbourhoodQuality::preservation),
        "reliability"_a = described_reliability(outcome.reliability),
        "neighbour_recall"_a =
            report.recall ? py::float_(report.recall->share) : py::object(py::none()),
        "is_interrupted"_a = outcome.is_interrupted,
        "map"_a = described_map(outcome, options),
        "caption"_a = outcome.caption,
        "note"_a = outcome.threads_note,
        "start_note"_a = report.start_remark,
        "neighbours_note"_a = outcome.neighbours_note);
}

using Indices = py::array_t<std::int64_t, py::array::c_style | py::array::forcecast>;

/// The neighbours of a compressed sparse matrix: row i has those from starts[i] on.
NeighbourLists lists_of(const Array& distances, const Indices& neighbours, const Indices& starts) {
    std::vector<GivenNeighbour> given;
    given.reserve(static_cast<std::size_t>(distances.size()));
    for (py::ssize_t row = 0; row + 1 < starts.size(); ++row) {
        for (std::int64_t i = starts.at(row); i < starts.at(row + 1); ++i) {
            given.push_back({static_cast<std::size_t>(row),
                             static_cast<std::size_t>(neighbours.at(i)),
                             distances.at(i)});
        }
    }
    return neighbour_lists(
        std::move(given), static_cast<std::size_t>(starts.size() - 1), "neighbour_graph");
}

/// @param graph  None, the path of a file, or distances, neighbours and starts
std::optional<NeighbourLists> given_neighbours(const py::object& graph, std::size_t rows) {
    if (graph.is_none()) {
        return std::nullopt;
    }
    if (py::isinstance<py::bytes>(graph)) {
        return read_neighbour_lists(graph.cast<std::string>(), rows);
    }
    const auto [distances, neighbours, starts] = graph.cast<std::tuple<Array, Indices, Indices>>();
    return lists_of(distances, neighbours, starts);
}

MatrixView<const double> view_of(const Array& array) {
    return {array.data(),
            static_cast<std::size_t>(array.shape(0)),
            static_cast<std::size_t>(array.shape(1))};
}

/// @param manner  by name, what `FitManner` has: threads, verbose, init (an array of the shape of
///                the embedding, or None), neighbours (as `given_neighbours` takes them), quality,
///                reliability, callback (a function or None), callback_every, keeps_interrupted,
///                seeds
py::dict embed(const Array& X, const py::dict& arguments, const py::dict& manner) {
    const MatrixView<const double> points = view_of(X);
    const FitOptions options = settled_options(arguments);
    const py::ssize_t shape[] = {X.shape(0), options.out_dims};
    const auto start = manner["init"].cast<std::optional<Array>>();
    const py::object callback = manner["callback"];
    FitManner chosen;
    chosen.threads = manner["threads"].cast<int>();
    chosen.verbose = manner["verbose"].cast<bool>();
    chosen.start = start ? start->data() : nullptr;
    const std::optional<NeighbourLists> neighbours =
        given_neighbours(manner["neighbours"], points.rows);
    chosen.neighbours = neighbours ? &*neighbours : nullptr;
    chosen.quality_neighbours = manner["quality"].cast<std::size_t>();
    chosen.wants_reliability = manner["reliability"].cast<bool>();
    chosen.seeds = manner["seeds"].cast<int>();
    chosen.callback_every = manner["callback_every"].cast<int>();
    chosen.keeps_interrupted = manner["keeps_interrupted"].cast<bool>();
    WaitingThread waiting(chosen.keeps_interrupted);
    if (!callback.is_none()) {
        chosen.callback = [&](const FitState& state) {
            bool stops = false;
            waiting.run([&] { stops = shows_to(callback, state, shape); });
            return stops;
        };
    }
    Outcome outcome = in_own_thread(
        [&](const std::atomic<bool>& is_interrupted) {
            return run_fit(points, options, chosen, is_interrupted);
        },
        waiting);
    return described(outcome, options, shape);
}

/// @param arguments  options of the fit that made the embedding
/// @param clusters   of each row, from 0; empty for none
/// @return columns by name, and pairs of clusters: their numbers, separation, shares of the maps of
/// other seeds and of other columns on which they are apart, and whether they stay so
py::tuple stability(const Array& X,
                    const Array& embedding,
                    const py::dict& arguments,
                    std::size_t count,
                    const std::vector<std::uint32_t>& clusters,
                    int threads) {
    const MatrixView<const double> points = view_of(X);
    const MatrixView<const double> map = view_of(embedding);
    const FitOptions options = settled_options(arguments);
    const RecordedStability compared = in_own_thread([&](const std::atomic<bool>& is_interrupted) {
        set_thread_count(threads);
        return compare_with_others(points, map, options, count, clusters, is_interrupted);
    });
    py::list pairs;
    for (const RecordedClusterPair& pair : compared.pairs) {
        pairs.append(py::make_tuple(pair.first,
                                    pair.second,
                                    pair.separation,
                                    pair.apart_seeds,
                                    pair.apart_columns,
                                    pair.stay_apart));
    }
    return py::make_tuple(described_columns(compared.columns), pairs);
}

/// @param kept        of each row of the embedding: what it keeps of so many neighbours
/// @param misfit      of each row
/// @param arguments   options of the fit that made the embedding
/// @return columns by name
py::dict against_noise(const Array& X,
                       const std::vector<double>& kept,
                       const std::vector<double>& misfit,
                       std::size_t neighbours,
                       const py::dict& arguments,
                       std::size_t count,
                       int threads) {
    const MatrixView<const double> points = view_of(X);
    const FitOptions options = settled_options(arguments);
    const RowReliability compared = in_own_thread([&](const std::atomic<bool>& is_interrupted) {
        set_thread_count(threads);
        return compare_with_noise(
            points, {kept, misfit, {}}, options, neighbours, count, is_interrupted);
    });
    return described_columns(compared.columns);
}

/// @param map  as `described_map` gave it
/// @return the places of the rows, rows x output dimensions, how far each is from the nearest row
/// of the map, and whether its place is no better than one infinitely far away
py::tuple place(const Array& X, const Array& embedding, const py::dict& map, int threads) {
    const auto input = map["input"].cast<Array>();
    const InputScale scale{map["centres"].cast<std::vector<double>>(),
                           map["factor"].cast<double>()};
    const FinishedMap finished{view_of(input),
                               scale,
                               view_of(embedding),
                               map["perplexity"].cast<double>(),
                               static_cast<MetricKind>(map["metric"].cast<int>()),
                               static_cast<NumericsKind>(map["numerics"].cast<int>())};
    const MatrixView<const double> rows = view_of(X);
    const PlacedRows placed = in_own_thread([&](const std::atomic<bool>& /*is_interrupted*/) {
        set_thread_count(threads);
        return place_rows(finished, rows);
    });
    const double nowhere = cost_of_no_place(finished.input.rows, finished.perplexity);
    std::vector<bool> is_lost;
    for (const double cost : placed.costs) {
        is_lost.push_back(cost >= nowhere);
    }
    return py::make_tuple(Array({X.shape(0), embedding.shape(1)}, placed.embedding.data()),
                          Array(static_cast<py::ssize_t>(placed.nearest_distances.size()),
                                placed.nearest_distances.data()),
                          is_lost);
}

/// The largest distance of a row of a fit from its nearest.
double reach(const Array& input, int threads) {
    const MatrixView<const double> rows = view_of(input);
    return in_own_thread([&](const std::atomic<bool>& /*is_interrupted*/) {
        set_thread_count(threads);
        return largest_nearest_distance(rows);
    });
}

/// @throws std::invalid_argument if there are too many values for a page
QuantisedMatrix matrix_of_page(const py::dict& form) {
    const auto values = form["values"].cast<Array>();
    const int bits = form["bits"].cast<int>();
    const MatrixView<const double> view = view_of(values);
    if (view.size() * static_cast<std::size_t>(bits / 8) > kMostPageBytes) {
        const std::size_t most = kMostPageBytes / static_cast<std::size_t>(bits / 8);
        throw std::invalid_argument(
            "the matrix has " + std::to_string(view.size()) + " values, and a page takes up to " +
            std::to_string(most) +
            (bits == 16 ? ", or twice as many with page_data=\"small\"" : "") +
            "\nLeave matrix out, or give fewer columns.");
    }
    return quantised(view, form["columns"].cast<std::vector<std::string>>(), bits);
}

std::string page(const Array& map, const py::dict& texts) {
    PageTexts shown;
    shown.title = texts["title"].cast<std::string>();
    shown.name = texts["name"].cast<std::string>();
    shown.names = texts["names"].cast<std::vector<std::string>>();
    shown.labels = texts["labels"].cast<std::vector<std::string>>();
    shown.functions = texts["functions"].cast<std::vector<std::string>>();
    shown.parameters = texts["parameters"].cast<std::vector<std::pair<std::string, std::string>>>();
    for (const py::handle& set : texts["sets"]) {
        const auto [name, rows] = set.cast<std::pair<std::string, std::vector<std::size_t>>>();
        shown.sets.push_back({name, rows, ""});
    }
    shown.metric = texts["metric"].cast<std::string>();
    if (!texts["matrix"].is_none()) {
        shown.matrix = matrix_of_page(texts["matrix"].cast<py::dict>());
    }
    return map_page(view_of(map), shown);
}

/// The rows that each name is about.
std::vector<std::vector<std::size_t>> find_rows(const std::vector<std::string>& row_names,
                                                const std::vector<std::string>& names) {
    const RowFinder finder(row_names, true);
    std::vector<std::vector<std::size_t>> rows;
    for (const std::string& name : names) {
        rows.push_back(finder.rowsOf(name));
    }
    return rows;
}

std::vector<py::bytes> as_bytes(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

/// @param form  those members by name, and `center`
LoadOptions load_options(const py::dict& form) {
    LoadOptions options;
    options.delimiter = form["delimiter"].cast<std::optional<char>>();
    options.decimal = form["decimal"].cast<std::optional<char>>();
    options.has_header = form["has_header"].cast<bool>();
    options.has_names = form["has_names"].cast<bool>();
    options.names_column = form["names_column"].cast<std::string>();
    options.skip_columns = form["skip_columns"].cast<std::vector<std::string>>();
    options.missing_signs = form["missing_signs"].cast<std::vector<std::string>>();
    options.sheet = form["sheet"].cast<std::string>();
    options.row_names_file = form["row_names"].cast<std::string>();
    options.transformations.log1p = form["log1p"].cast<bool>();
    options.transformations.centre =
        centring_of(form["center"].cast<std::string>()).value_or(Centring::None);
    options.transformations.scale = form["scale"].cast<bool>();
    options.transformations.transpose = form["transpose"].cast<bool>();
    return options;
}

py::tuple read_matrix(const std::string& path,
                      const py::dict& arguments,
                      const std::string& missing) {
    const LoadOptions options = load_options(arguments);
    MatrixFile file = in_own_thread([&](const std::atomic<bool>& /*is_interrupted*/) {
        return read_matrix_file(path, options, missing);
    });
    const std::vector<py::bytes> row_names = as_bytes(file.matrix.row_names);
    const std::vector<py::bytes> column_names = as_bytes(file.matrix.column_names);
    const MatrixReport& report = file.matrix.report;
    return py::make_tuple(as_array(std::move(file.matrix.values), report.rows, report.columns),
                          row_names,
                          column_names,
                          as_bytes(file.warnings),
                          as_bytes(file.notes));
}

/// @return disparity and share of common neighbours, averaged over the pairs of maps
std::pair<double, double> agreement(const std::vector<Array>& maps, std::size_t neighbours) {
    std::vector<MatrixView<const double>> views;
    views.reserve(maps.size());
    for (const Array& map : maps) {
        views.push_back({map.data(),
                         static_cast<std::size_t>(map.shape(0)),
                         static_cast<std::size_t>(map.shape(1))});
    }
    const MapAgreement found = in_own_thread([&](const std::atomic<bool>& /*is_interrupted*/) {
        return mean_agreement(views, neighbours);
    });
    return {found.disparity, found.shared_neighbours};
}

/// @return name, systematic name and function of the gene of this name, else of this systematic
/// name; None if there is none
py::object gene_entry(const std::string& name) {
    const GeneEntry* gene = find_gene(name);
    if (gene == nullptr) {
        gene = find_systematic_gene(name);
    }
    return gene == nullptr ? py::none().cast<py::object>()
                           : py::make_tuple(gene->name, gene->systematic, gene->function);
}

std::vector<std::string> listed_names(const std::vector<const GeneEntry*>& genes) {
    std::vector<std::string> names;
    names.reserve(genes.size());
    for (const GeneEntry* const gene : genes) {
        names.emplace_back(gene->name);
    }
    return names;
}

/// @param background  names, or None for all genes
/// @return the fields of each term in the order of `EnrichedTerm`, and what else there is to say,
/// by name
py::tuple enriched_terms(const std::vector<std::string>& names,
                         const std::optional<std::vector<std::string>>& background) {
    using namespace py::literals;  // NOLINT(google-build-using-namespace): that is their use
    const NamedGenes list = genes_named(names);
    const NamedGenes from = background ? genes_named(*background) : NamedGenes();
    const Enrichment enrichment = background ? enrich(list.genes, from.genes) : enrich(list.genes);
    py::list rows;
    for (const EnrichedTerm& term : enrichment.terms) {
        const GoTerm& known = go_terms()[term.term];
        rows.append(py::make_tuple(known.id,
                                   known.name,
                                   std::string(aspect_name(known.aspect)),
                                   term.hits,
                                   term.size,
                                   enrichment.drawn,
                                   enrichment.total,
                                   term.fold,
                                   term.p,
                                   term.q,
                                   listed_names(term.genes)));
    }
    return py::make_tuple(rows,
                          py::dict("found"_a = list.genes.size(),
                                   "background"_a = from.genes.size(),
                                   "drawn"_a = enrichment.drawn,
                                   "tested"_a = enrichment.tested,
                                   "not_found"_a = as_bytes(list.unknown),
                                   "ambiguous"_a = as_bytes(list.ambiguous),
                                   "outside"_a = listed_names(enrichment.outside),
                                   "without_terms"_a = listed_names(enrichment.without_terms)));
}

}  // namespace

}  // namespace ovik::python

PYBIND11_MODULE(_core, module) {
    namespace py = pybind11;
    using namespace py::literals;  // NOLINT(google-build-using-namespace): that is their use
    module.attr("__version__") = OVIK_VERSION;
    py::register_local_exception_translator(ovik::python::translate);
    module.def("embed", ovik::python::embed, "X"_a.noconvert(), "options"_a, "manner"_a);
    module.def(
        "place", ovik::python::place, "X"_a.noconvert(), "embedding"_a, "map"_a, "threads"_a);
    module.def("reach", ovik::python::reach, "input"_a, "threads"_a);
    module.def("page", ovik::python::page, "embedding"_a.noconvert(), "texts"_a);
    module.def("find_rows", ovik::python::find_rows, "row_names"_a, "names"_a);
    module.def("available_memory", [] {
        const ovik::AvailableMemory available = ovik::available_memory();
        return std::pair(available.bytes, available.limit);
    });
    module.def("settle_options",
               ovik::python::settle_options,
               "given"_a,
               "preset"_a,
               "rows"_a,
               "columns"_a);
    module.def("read_matrix", ovik::python::read_matrix, "path"_a, "form"_a, "missing"_a);
    module.def("stability",
               ovik::python::stability,
               "X"_a,
               "embedding"_a,
               "options"_a,
               "count"_a,
               "clusters"_a,
               "threads"_a);
    module.def("against_noise",
               ovik::python::against_noise,
               "X"_a,
               "kept"_a,
               "misfit"_a,
               "neighbours"_a,
               "options"_a,
               "count"_a,
               "threads"_a);
    module.def("agreement", ovik::python::agreement, "maps"_a, "neighbours"_a);
    module.def(
        "split_gene_names",
        [](const std::string& text) {
            return ovik::python::as_bytes(ovik::split_gene_names(text));
        },
        "text"_a);
    module.def("enrich", ovik::python::enriched_terms, "genes"_a, "background"_a);
    module.def("find_gene", ovik::python::gene_entry, "name"_a);
}
