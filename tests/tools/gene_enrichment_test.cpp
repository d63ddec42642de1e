#include "tools/gene_enrichment.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

struct Shown {
    ExitStatus status = FailedRun;
    std::string out;
    std::string err;
};

class ShowEnrichment : public testing::Test {
  protected:
    Options listing(const std::string& genes) {
        Options options;
        options.enrich = directory_.write("genes.txt", genes);
        return options;
    }

    static Shown shown(const Options& options) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        Shown shown;
        std::string refusal;
        try {
            shown.status = show_enrichment(options);
        } catch (const InputError& error) {
            shown.status = BadInput;
            refusal = error.what();
        }
        shown.out = testing::internal::GetCapturedStdout();
        shown.err = testing::internal::GetCapturedStderr() + refusal;
        return shown;
    }

    test::TemporaryDirectory directory_;
};

TEST_F(ShowEnrichment, TakesThePlaceOfNoFileThatIsRead) {
    Options options = listing("HSP104 SSA1");
    options.enrichment_file = options.enrich;
    EXPECT_THAT(shown(options).err, HasSubstr("would take the place of --enrich"));
    EXPECT_EQ(test::read_file(options.enrich), "HSP104 SSA1");
}

TEST_F(ShowEnrichment, PrintsTheTableAndNamesWhatItLeavesOut) {
    const Shown terms = shown(listing("HSP104, ssa1 YDL229W\nnonsense\nYAL069W MF"));
    EXPECT_EQ(terms.status, Success);
    EXPECT_THAT(terms.out, StartsWith("term\tname\taspect\thits"));
    EXPECT_THAT(terms.out, HasSubstr("\nGO:0006457\tprotein folding\tprocess\t3\t"));
    EXPECT_THAT(terms.out, HasSubstr("SSA1 SSB1 HSP104\n"));
    EXPECT_THAT(terms.err,
                AllOf(HasSubstr("note: not found in the gene table: nonsense\n"),
                      HasSubstr("note: names of several genes, of which none is taken: MF\n"),
                      HasSubstr("note: in no term: YAL069W\n"),
                      HasSubstr("note: 3 annotated genes of the list beside 5")));
}

TEST_F(ShowEnrichment, ComparesWithTheGenesOfAMatrix) {
    Options options = listing("CLN1 CLN2 HSP104");
    options.background = directory_.write(
        "m.tsv", "gene\ta\tb\nCLN1\t1\t2\nCLN2\t2\t1\nENO1\t3\t4\nENO2\t5\t3\nYAL069W\t1\t1\n");
    const Shown terms = shown(options);
    EXPECT_EQ(terms.status, Success) << terms.err;
    // 2 of 2 in 2 of 4: a chance of 1 in 6.
    EXPECT_THAT(terms.out, HasSubstr("\t2\t2\t2\t4\t2\t0.16666666666666666\t"));
    EXPECT_THAT(
        terms.err,
        AllOf(HasSubstr("note: not in " + options.background + ": HSP104\n"),
              HasSubstr("2 annotated genes of the list beside 4 of " + options.background)));
}

TEST_F(ShowEnrichment, WritesAFile) {
    Options options = listing("CLN1 CLN2");
    options.enrichment_file = directory_.file("made/yeast_enrichment.tsv");
    options.quiet = true;
    const Shown terms = shown(options);
    EXPECT_EQ(terms.status, Success);
    EXPECT_EQ(terms.out, "");
    EXPECT_EQ(terms.err, "");
    EXPECT_THAT(test::read_file(options.enrichment_file), StartsWith("term\tname\t"));
}

TEST_F(ShowEnrichment, WarnsOfListsThatAreMostlyUnknown) {
    Options options = listing("CLN1 one two three");
    options.quiet = true;
    EXPECT_EQ(shown(options).err,
              "ovik-tsne: warning: not found in the gene table: one, two, three\n");
}

TEST_F(ShowEnrichment, RefusesWhatHasNothingToTest) {
    const auto refusal = [this](const std::string& genes) {
        const Shown terms = shown(listing(genes));
        EXPECT_EQ(terms.status, BadInput);
        EXPECT_EQ(terms.out, "");
        return terms.err;
    };
    EXPECT_THAT(refusal(" \n"), HasSubstr("genes.txt: holds no names of genes\nGive one per line"));
    EXPECT_THAT(refusal("TP53 BRCA1"),
                HasSubstr("none of the 2 names is that of one gene of yeast"));
    EXPECT_THAT(refusal("YAL069W"), HasSubstr("none of its genes is in a GO slim term"));
    EXPECT_THAT(refusal(std::string("CLN1\0CLN2", 9)), HasSubstr("no text"));
    Options options = listing("CLN1");
    options.background =
        directory_.write("m.tsv", "gene\ta\tb\nTP53\t1\t2\nBRCA1\t2\t1\nMYC\t1\t1\n");
    EXPECT_THAT(shown(options).err, HasSubstr("m.tsv: none of its rows is a gene of yeast"));
    options.enrich = directory_.file("missing.txt");
    EXPECT_THAT(shown(options).err,
                HasSubstr("missing.txt: the genes cannot be read (No such file"));
}

}  // namespace
}  // namespace ovik::tool
