/* Sets, indicator constraints, cuts, lazy constraints and quadratic data of LP and MPS files: both formats
 * say the same thing and load into the same problem. */
#include <filesystem>

#include "support/describe_families.h"
#include "support/file_fixture.h"

namespace {

class Families : public support::WithFiles {
 protected:
  /* The problem that the text makes, or its error. */
  std::string read(const std::string& text, const char* type) {
    if (read_text(std::string("model.") + type, text) != 0) return errors();
    return support::describe_families(env_, lp_);
  }
};

const std::string kObjective = "min x + 2 y\nst\n r: x + y + b >= 1\n";
const std::string kRows = "NAME\nROWS\n N obj\n G r\n";
const std::string kColumns = "COLUMNS\n x obj 1 r 1\n y obj 2 r 1\n b r 1\n";

struct Case {
  const char* what;
  std::string lp, mps, families;
};

const Case kCases[] = {
    {"sets, one without a name; a weight of zero", kObjective + "sos\n s: S1:: x:1 y:2\n S2:: b:3 x:0\nend\n",
     kRows + kColumns + "SOS\n S1 s\n x 1\n y 2\n S2\n b 3\n x 0\nENDATA\n",
     "type 1 CCC\nset s 1 x:1 y:2\nset s2 2 b:3 x:0\n"},
    {"indicators in both directions",
     kObjective + " i: b = 1 -> x - 2 y <= 4\n j: x >= 3 <- b = 0\nbinaries\n b\nend\n",
     kRows + " L i\n G j\nCOLUMNS\n x obj 1 r 1\n x i 1 j 1\n y obj 2 r 1\n y i -2\n b r 1\n" +
         "RHS\n rhs i 4 j 3\nBOUNDS\n BV bnd b\nINDICATORS\n IF i b 1\n IF j b 0\nENDATA\n",
     "type 1 CCB\nif b=1 i L 4 x:1 y:-2\nif b=0 j G 3 x:1\n"},
    {"cuts and lazy constraints",
     kObjective + "lazy constraints\n l: x + y <= 9\nuser cuts\n u: y - b = 1\nend\n",
     kRows + "USERCUTS\n E u\nLAZYCONS\n L l\n" +
         "COLUMNS\n x obj 1 r 1\n x l 1\n y obj 2 r 1\n y l 1 u 1\n b r 1 u -1\nRHS\n rhs l 9 u 1\nENDATA\n",
     "type 1 CCC\ncut u E 1 y:1 b:-1\nlazy l L 9 x:1 y:1\n"},
    {"a quadratic objective: x^2 + 3 x y",
     "min x + 2 y + [ 2 x ^ 2 + 6 x * y ] / 2\nst\n r: x + y + b >= 1\nend\n",
     kRows + kColumns + "QUADOBJ\n x x 2\n x y 3\nENDATA\n", "type 5\nquad x*x 2\nquad x*y 3\n"},
    {"quadratic rows beside a quadratic objective and integers",
     "min x + 2 y + [ 4 y ^ 2 ] / 2\nst\n r: x + y + b >= 1\n q: x + [ x ^ 2 + 2 x * y ] <= 8\nbinaries\n "
     "b\nend\n",
     kRows + " L q\nCOLUMNS\n x obj 1 r 1\n x q 1\n y obj 2 r 1\n b r 1\nRHS\n rhs q 8\nBOUNDS\n BV bnd b\n" +
         "QMATRIX\n y y 4\nQCMATRIX q\n x x 1\n x y 1\n y x 1\nENDATA\n",
     "type 11 CCB\nquad y*y 4\nqrow q L 8 x:1 [ x*x:1 x*y:2 ]\n"},
};

TEST_F(Families, BothFormatsLoadTheSame) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(read(c.lp, "lp"), c.families);
    EXPECT_EQ(TVKgetnumrows(env_, lp_), 1);
    EXPECT_EQ(read(c.mps, "mps"), c.families);
    EXPECT_EQ(TVKgetnumrows(env_, lp_), 1);
  }
  EXPECT_EQ(read(kObjective + "end\n", "lp"), "type 0\n");
}

TEST_F(Families, SoundFilesOfTheCorpusLoad) {
  int files = 0;
  for (const char* type : {"lp", "mps"}) {
    const std::string folder = std::string(TOVIK_SOURCE_DIR "/tests/fileio/corpus/") + type;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (!entry.path().filename().string().starts_with("sound_")) continue;
      EXPECT_EQ(TVKreadcopyprob(env_, lp_, entry.path().c_str(), type), 0) << entry.path();
      EXPECT_NE(support::describe_families(env_, lp_), "type 0\n") << entry.path();
      ++files;
    }
  }
  EXPECT_GT(files, 16);
}

}  // namespace
