#include "tools/gene_report.h"

#include <string>

#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

struct Shown {
    ExitStatus status;
    std::string out;
    std::string err;
};

Shown shown(const std::string& name) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const ExitStatus status = show_gene(name);
    std::string out = testing::internal::GetCapturedStdout();
    return {status, out, testing::internal::GetCapturedStderr()};
}

TEST(ShowGene, PrintsWhatTheGeneDoes) {
    const Shown gene = shown("CDC28");
    EXPECT_EQ(gene.status, Success);
    EXPECT_EQ(gene.out, "CDC28: Cyclin-dependent kinase (CDK) catalytic subunit\n");
    EXPECT_EQ(gene.err, "");
}

TEST(ShowGene, RefusesANameThatTheTableLacks) {
    const Shown systematic = shown("YBR160W");
    EXPECT_EQ(systematic.status, BadInput);
    EXPECT_EQ(systematic.out, "");
    EXPECT_EQ(systematic.err,
              "ovik-tsne: there is no gene \"YBR160W\" in the table\nDid you mean CDC28?\n");
    const Shown unlike = shown("xxxxxxxxxxxxxxxxxxxxxxxx");
    EXPECT_EQ(unlike.status, BadInput);
    EXPECT_EQ(unlike.err,
              "ovik-tsne: there is no gene \"xxxxxxxxxxxxxxxxxxxxxxxx\" in the table\n");
    EXPECT_EQ(shown("").status, BadInput);
}

}  // namespace
}  // namespace ovik::tool
