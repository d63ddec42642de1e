#include "input/header_line.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

#include "input/quoted_record.h"
#include "input/systematic_name.h"
#include "input/table_head.h"
#include "input/text_lines.h"
#include "input/value_reader.h"
#include "util/input_error.h"
#include "util/matrix_line.h"

namespace ovik {

namespace {

/// What stands above names: in small letters, without what stands between words, blanks around
/// each.
constexpr std::string_view kHeadsOfNames =
    " accession array barcode cell cellid cells clid compound condition contig days dose drug "
    "ensembl ensemblid entrez entrezid experiment feature featureid features gene geneid "
    "geneids genename genenames genes genesymbol hour hours id identifier idref ids index "
    "isoform locus locustag minutes name names orf orfid orfname orfs otu otuid peptide probe "
    "probeid probes probeset probesetid protein proteinid proteins row rowid rowname rownames "
    "sample sampleid samples species spot standardname strain strains symbol symbols "
    "systematicid systematicname tag targetid taxon time timeh timemin timepoint timepoints "
    "transcript transcriptid transcripts treatment uid uniprot uniprotid uniqid variable yorf ";

char lower_case(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// A name whose runs of digits are one 0 each: names that are numbered become the same.
std::string shape_of(const std::string& name) {
    std::string shape;
    for (const char c : name) {
        const bool is_digit = c >= '0' && c <= '9';
        if (!is_digit || shape.empty() || shape.back() != '0') {
            shape += is_digit ? '0' : c;
        }
    }
    return shape;
}

/// Whether names are numbered, and one more is of their kind.
bool is_numbered_like(const std::string& name, const std::vector<std::string>& names) {
    const std::string shape = shape_of(name);
    return !names.empty() && shape.find('0') != std::string::npos && shape != "0" &&
           std::all_of(names.begin(), names.end(), [&shape](const std::string& other) {
               return shape_of(other) == shape;
           });
}

/// The numbers among fields, with whatever decimal sign; none if there is no number, or as much
/// text.
std::optional<std::vector<double>> numbers_of(const std::vector<std::string>& fields,
                                              const LoadOptions& options) {
    const ValueReader reader(options.decimal, options.missing_signs);
    const ValueReader with_commas(',', options.missing_signs);
    std::vector<double> numbers;
    std::size_t texts = 0;
    for (const std::string& field : fields) {
        const char* const end = field.c_str() + field.size();
        double value = 0.0;
        const FieldKind kind = reader.read(field.c_str(), end, value);
        if (kind == FieldKind::Number ||
            with_commas.read(field.c_str(), end, value) == FieldKind::Number) {
            numbers.push_back(value);
        } else if (kind != FieldKind::Missing) {
            ++texts;
        }
    }
    return numbers.size() <= texts ? std::nullopt : std::optional(std::move(numbers));
}

bool may_head_columns(const std::vector<double>& numbers) {
    return std::is_sorted(numbers.begin(), numbers.end()) ||
           std::all_of(numbers.begin(), numbers.end(), [](double v) { return v == std::floor(v); });
}

/// The fields of a record up to the last that is not empty; none of comments.
std::vector<std::string> filled_fields_of(std::string_view record, char delimiter) {
    if (!is_matrix_row(trimmed_matrix_line(record))) {
        return {};
    }
    std::vector<std::string> fields = fields_of(record, delimiter, true);
    while (!fields.empty() && fields.back().empty()) {
        fields.pop_back();
    }
    return fields;
}

/// Whether fields are headers: texts alone, or numbers behind what heads names.
bool heads_columns(const std::vector<std::string>& fields, const LoadOptions& options) {
    const std::vector<std::string> values(fields.begin() + 1, fields.end());
    const bool has_number =
        std::any_of(values.begin(), values.end(), [&options](const std::string& value) {
            return numbers_of({value}, options).has_value();
        });
    const std::optional<std::vector<double>> numbers = numbers_of(values, options);
    return !has_number || (numbers && heads_names(fields.front()) && may_head_columns(*numbers));
}

}  // namespace

std::size_t find_header(const std::string& path,
                        std::string_view text,
                        std::size_t first_text,
                        char delimiter,
                        const LoadOptions& options) {
    const std::vector<std::string_view> lines = line_views(text);
    if (first_text >= lines.size()) {
        return 0;
    }
    std::vector<std::string> values = fields_of(lines[first_text], delimiter, true);
    const std::string name = values.empty() ? "" : values.front();
    values.erase(values.begin(), values.begin() + (values.empty() ? 0 : 1));
    const std::optional<std::vector<double>> numbers = numbers_of(values, options);
    if (!numbers) {
        return first_text;
    }
    if (heads_names(name) && may_head_columns(*numbers)) {
        return first_text;
    }
    // A comment with a field for each of this line's heads it.
    for (std::size_t line = first_text; line-- > 0;) {
        if (trimmed_matrix_line(lines[line]).starts_with('#') && !values.empty() &&
            fields_of(lines[line], delimiter, false).size() == values.size() + 1) {
            return line;
        }
    }
    if (name.empty()) {
        return first_text;
    }
    const bool is_empty = trimmed_matrix_line(lines[0]).empty();
    if (is_empty || looks_like_gene(name, options) || !may_head_columns(*numbers)) {
        return 0;
    }
    throw InputError(path + ":" + std::to_string(first_text + 1) +
                     ": the line behind the comments may be the header or a row: its fields are "
                     "all numbers\nTake the comments away if it is the header; if it is a row, "
                     "there is none: " +
                     options.spell("no-header", "") + ".");
}

std::size_t header_below_title(std::string_view text,
                               std::size_t header,
                               char delimiter,
                               const LoadOptions& options) {
    constexpr std::size_t kRecordsLookedAt = 20;
    std::size_t line = 0;
    std::optional<std::size_t> fields_of_title;
    for (std::size_t looked_at = 0; !text.empty() && looked_at < kRecordsLookedAt;) {
        const std::string_view record = text.substr(0, first_record(text, delimiter).length);
        if (line >= header) {
            const std::vector<std::string> fields = filled_fields_of(record, delimiter);
            if (!fields_of_title) {
                fields_of_title = fields.size();
            } else if (fields.size() > *fields_of_title + 1) {
                return heads_columns(fields, options) ? line : header;
            }
            ++looked_at;
        }
        line += line_views(record).size();
        text.remove_prefix(record.size());
    }
    return header;
}

bool looks_like_row(const std::string& name,
                    const std::vector<std::string>& values,
                    const std::vector<std::string>& names,
                    const LoadOptions& options) {
    const std::optional<std::vector<double>> numbers = numbers_of(values, options);
    return numbers && (looks_like_gene(name, options) || is_numbered_like(name, names) ||
                       !may_head_columns(*numbers));
}

bool may_be_row(bool has_names,
                const std::string& name,
                const std::vector<std::string>& values,
                const LoadOptions& options) {
    const std::optional<std::vector<double>> numbers = numbers_of(values, options);
    return numbers && (has_names ? !name.empty() && !heads_names(name)
                                 : !std::is_sorted(numbers->begin(), numbers->end()));
}

bool heads_names(std::string_view text) {
    std::string word = " ";
    for (const char c : text) {
        if (std::string_view(" \t._-()[]/").find(c) == std::string_view::npos) {
            word += lower_case(c);
        }
    }
    return kHeadsOfNames.find(word + ' ') != std::string_view::npos;
}

bool looks_like_gene(const std::string& name, const LoadOptions& options) {
    return is_systematic_name(name) || (options.is_gene && options.is_gene(name));
}

}  // namespace ovik
