#include "input/known_layouts.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <string_view>

#include "util/counted.h"

namespace ovik {

namespace {

char lower_case(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool is_same(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return lower_case(x) == lower_case(y);
    });
}

/// The field of a header, in capitals or not; none if it is not there.
std::optional<std::size_t> find_field(const TableHead& head, std::string_view name) {
    const auto field =
        std::find_if(head.header.begin(), head.header.end(), [name](const std::string& text) {
            return is_same(text, name);
        });
    return field == head.header.end()
               ? std::nullopt
               : std::optional(static_cast<std::size_t>(field - head.header.begin()));
}

bool opens_with(const TableHead& head, std::initializer_list<std::string_view> names) {
    return head.header.size() >= names.size() &&
           std::equal(names.begin(), names.end(), head.header.begin(), is_same);
}

bool has_row(const TableHead& head, std::string_view name) {
    return std::any_of(head.rows.begin(), head.rows.end(), [name](const auto& row) {
        return !row.empty() && is_same(row[0], name);
    });
}

/// Leaves out the fields of a range that are not the names.
void leave_out(TableLayout& layout, std::size_t begin, std::size_t end) {
    for (std::size_t field = begin; field < end; ++field) {
        if (field != layout.names_field) {
            layout.leaveOut(field);
        }
    }
}

bool is_cluster_table(const TableHead& head) {
    const std::optional<std::size_t> weights = find_field(head, "GWEIGHT");
    return (weights && *weights > 0) || has_row(head, "EWEIGHT");
}

/// Tables of Cluster and of the databases that write as it does: weights and orders of genes and of
/// experiments, and identifiers of the trees' leaves (GID, AID) once they are clustered.
void describe_cluster_table(const TableHead& head, TableLayout& layout) {
    constexpr std::size_t kLastOfNames = 3;
    const bool has_leaves = opens_with(head, {"GID"});
    layout.names_field = has_leaves ? 1 : 0;
    layout.no_rows = {"EWEIGHT", "EORDER", "AID"};
    layout.name += has_leaves || has_row(head, "AID") ? " (.cdt)" : " (.pcl)";
    const std::optional<std::size_t> weights = find_field(head, "GWEIGHT");
    const std::optional<std::size_t> name = find_field(head, "NAME");
    const std::optional<std::size_t> order = find_field(head, "GORDER");
    const auto end_of = [](std::optional<std::size_t> field, std::size_t last) {
        return field && *field <= last ? *field + 1 : 0;
    };
    leave_out(layout,
              0,
              std::max({weights ? *weights + 1 : 0,
                        end_of(name, kLastOfNames),
                        end_of(order, kLastOfNames + 1)}));
}

/// A series matrix, or a data set of the same database, in which genes have names beside the
/// identifiers of the probes.
void describe_geo_table(const TableHead& head, TableLayout& layout) {
    const bool is_series =
        std::any_of(head.opening.begin(), head.opening.end(), [](const std::string& line) {
            return line.starts_with("!series_matrix_table_begin");
        });
    layout.end_mark = is_series ? "!series_matrix_table_end" : "!dataset_table_end";
    const std::optional<std::size_t> identifier = find_field(head, "IDENTIFIER");
    layout.names_field = is_series ? 0 : identifier.value_or(0);
    leave_out(layout, 0, is_series ? 0 : identifier.value_or(0));
    layout.notes.push_back("the " + std::to_string(head.opening.size()) +
                           " lines above the table are no rows");
}

/// Whole numbers of a line, as many as it opens with.
std::vector<std::size_t> sizes_of(std::string_view line) {
    std::vector<std::size_t> sizes;
    std::size_t size = 0;
    const char* at = line.data();
    const char* const end = line.data() + line.size();
    while (at < end) {
        const auto [rest, error] = std::from_chars(at, end, size);
        if (error != std::errc()) {
            break;
        }
        sizes.push_back(size);
        at = std::find_if(rest, end, [](char c) { return c != '\t' && c != ' '; });
    }
    return sizes;
}

bool is_gct(const TableHead& head) {
    return head.opening.size() == 2 &&
           (head.opening[0].ends_with("#1.2") || head.opening[0].ends_with("#1.3"));
}

/// Version 1.2 has a description of each row; 1.3 has as many of rows and columns as it says.
void describe_gct(const TableHead& head, TableLayout& layout) {
    const bool is_newer = head.opening[0].ends_with("#1.3");
    const std::vector<std::size_t> sizes = sizes_of(head.opening[1]);
    const std::size_t of_rows = !is_newer ? 1 : sizes.size() > 2 ? sizes[2] : 0;
    const std::size_t of_columns = is_newer && sizes.size() > 3 ? sizes[3] : 0;
    layout.lines_above += of_columns;
    leave_out(layout, 1, std::min(1 + of_rows, head.header.size()));
    if (!sizes.empty()) {
        layout.promised_rows = sizes[0];
    }
    layout.name += is_newer ? " 1.3" : " 1.2";
    if (of_columns > 0) {
        layout.notes.push_back(
            counted(of_columns, "line above the rows describes", "lines above the rows describe") +
            " the columns");
    }
}

/// Of one sample: the column of abundances is the only value.
void describe_abundances(const TableHead& head, TableLayout& layout) {
    const std::size_t abundance = *find_field(head, "TPM");
    for (std::size_t field = 1; field < head.header.size(); ++field) {
        if (field != abundance) {
            layout.leaveOut(field);
        }
    }
    layout.notes.emplace_back(
        "the file holds one sample, and a map of rows by one value says little: join the files of "
        "all samples into one matrix");
}

/// What programs that count reads append to the rows.
std::vector<std::string> summary_rows() {
    return {"__no_feature",
            "__ambiguous",
            "__too_low_aQual",
            "__not_aligned",
            "__alignment_not_unique",
            "N_unmapped",
            "N_multimapping",
            "N_noFeature",
            "N_ambiguous"};
}

void describe_plain_text(const TableHead& head, TableLayout& layout) {
    layout.no_rows = summary_rows();
    if (!head.opening.empty() && !head.header.empty()) {
        const std::size_t lines = head.opening.size();
        layout.notes.push_back(
            (lines == 1 ? "line 1 is" : "lines 1 to " + std::to_string(lines) + " are") +
            " above the header, and no rows");
    }
}

}  // namespace

const std::vector<KnownLayout>& known_layouts() {
    static const std::vector<KnownLayout> kLayouts = {
        {.name = "GCT", .recognises = is_gct, .describe = describe_gct},
        {.name = "GEO table",
         .recognises =
             [](const TableHead& head) {
                 return !head.opening.empty() && opens_as_geo(head.opening.front());
             },
         .describe = describe_geo_table},
        {.name = "gene expression table",
         .recognises = is_cluster_table,
         .describe = describe_cluster_table},
        {.name = "featureCounts table",
         .recognises =
             [](const TableHead& head) {
                 return opens_with(head, {"Geneid", "Chr", "Start", "End", "Strand", "Length"});
             },
         .describe = [](const TableHead& /*head*/,
                        TableLayout& layout) { leave_out(layout, 1, 6); }},
        {.name = "Salmon table",
         .recognises =
             [](const TableHead& head) {
                 return opens_with(head, {"Name", "Length", "EffectiveLength", "TPM"});
             },
         .describe = describe_abundances},
        {.name = "kallisto table",
         .recognises =
             [](const TableHead& head) {
                 return opens_with(head,
                                   {"target_id", "length", "eff_length", "est_counts", "tpm"});
             },
         .describe = describe_abundances},
        {.name = "RSEM table",
         .recognises =
             [](const TableHead& head) {
                 return (opens_with(head, {"gene_id", "transcript_id(s)", "length"}) ||
                         opens_with(head, {"transcript_id", "gene_id", "length"})) &&
                        find_field(head, "TPM");
             },
         .describe = describe_abundances},
        {.name = "",
         .recognises = [](const TableHead& /*head*/) { return true; },
         .describe = describe_plain_text}};
    return kLayouts;
}

}  // namespace ovik
