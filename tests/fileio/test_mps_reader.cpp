/* The MPS reader through the public header: texts to models, what it says on the way, a corpus of broken
 * files, and the public test sets where they lie beside the project. A corpus file is named by the code that
 * it must give: 1454_fx_after_up.mps; 0 for sound ones. */
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/file_fixture.h"

namespace {

namespace fs = std::filesystem;

class MpsReader : public support::WithFiles {
 protected:
  int read(const std::string& text) { return read_text("model.mps", text); }
};

const std::string kRows = "NAME  P\nROWS\n N  obj\n L  a\n G  b\n E  c\n";
const std::string kColumns = "COLUMNS\n    x  obj  1  a  1\n    x  b  2\n    y  a  1  c  -1\n    z  obj  3\n";
const std::string kTop = kRows + kColumns;
const std::string kEnd = "ENDATA\n";

/* The model of kTop with the given bounds, types ('-': continuous) and rows. */
std::string model_of(const std::string& x, const std::string& y, const std::string& z,
                     const std::string& types = "---", const std::string& rows = "a L 0\nb G 0\nc E 0\n") {
  return std::string("min 0\nx ") + types[0] + " 1 " + x + " a:1 b:2\ny " + types[1] + " 0 " + y +
         " a:1 c:-1\nz " + types[2] + " 3 " + z + "\n" + rows;
}
const std::string kPlus = "[0,inf]";

struct ModelCase {
  const char* what;
  std::string text;
  std::string model;
  std::string warnings = {};
};

const ModelCase kModels[] = {
    {"sections in order", kTop + "RHS\n    rhs  a  4  b  -1.5\n    rhs  c  1e1\n" + kEnd,
     model_of(kPlus, kPlus, kPlus, "---", "a L 4\nb G -1.5\nc E 10\n")},
    {"comments, blank lines, tabs, carriage returns, lower-case words, no line feed at the end",
     "* first\n\nname\r\nrows\r\n\tn\tobj\n* more\n l r\ncolumns\n   \n x\tobj\t1.  r  .5\r\n*\nrhs\n r  "
     "-0\nendata",
     "min 0\nx - 1 [0,inf] r:0.5\nr L -0\n", "Warning:  Blank RHS name changed to 'rhs'.\n"},
    {"maximize; another free row as objective; deleted free rows and what they held",
     "NAME\nOBJSENSE\n    max\nOBJNAME\n    cost\nROWS\n N  first\n N  cost\n L  r\n N  other\nCOLUMNS\n    "
     "x  first  1  cost  2\n"
     "    x  r  3  other  4\nRHS\n    R  first  5  r  1\nENDATA\n",
     "max 0\nx - 2 [0,inf] r:3\nr L 1\n", "Warning:  RHS 'R' value for free row 'first' ignored.\n"},
    {"objective sense on the header line; a wanted objective that is not there",
     "NAME\nOBJSENSE MIN\nOBJNAME\n    nothing\n" + kTop.substr(8) + kEnd, model_of(kPlus, kPlus, kPlus),
     "Warning:  Specified objective 'nothing' not found.\n"},
    {"ranges by sense and sign; infinite and zero ones",
     "NAME\nROWS\n N  o\n L  l\n G  g\n E  e\n E  f\n L  m\n E  z\nCOLUMNS\n    x  l  1  g  1\n    x  e  1  "
     "f  1\n    x  m  1  z  1\n"
     "RHS\n    r  l  10  g  10\n    r  e  10  f  10\n    r  m  10\nRANGES\n    q  l  -2  g  3\n    q  e  4  "
     "f  -5\n"
     "    q  m  inf  z  0\n    q  o  1\nENDATA\n",
     "min 0\nx - 0 [0,inf] l:1 g:1 e:1 f:1 m:1 z:1\nl R 10 -2\ng R 10 3\ne R 10 4\nf R 10 -5\nm L 10\nz E "
     "0\n",
     "Warning, line 22:  OBJ coefficient in RANGES section ignored.\n"},
    {"bounds of all types, either case, with and without a set name",
     kTop + "BOUNDS\n UP b  x  4\n lo b  x  -1e30\n FX b  y  2\n MI b  z\n UP b  z  1e25\n" + kEnd,
     model_of("[-inf,4]", "[2,2]", "[-inf,inf]")},
    {"bounds that declare types", kTop + "BOUNDS\n BV B  x\n LI B  y  2\n UI B  y  7\n SC B  z  9\n" + kEnd,
     model_of("[0,1]", "[2,7]", "[1,9]", "BIS"),
     "Warning:  Lower bound of 1.0 assumed for semi-continuous column \n          'z' in bound 'B'\n"},
    {"semi-continuous becomes semi-integer either way; infinity in words; plus and free",
     kTop + "BOUNDS\n UI  x  3\n SC  y  Inf\n LI  y  0\n PL  z\n" + kEnd,
     model_of("[0,3]", "[0,inf]", "[0,inf]", "INC")},
    {"markers",
     kRows +
         "COLUMNS\n    M  'MARKER'  'INTORG'\n    x  obj  1  a  1\n    x  b  2\n    M2 'MARKER' 'INTEND'\n"
         "    y  a  1  c  -1\n    M 'MARKER' 'WHAT'\n    z  obj  3\nBOUNDS\n SC  x  8.5\n LO  x  2\n" +
         kEnd,
     model_of("[2,8.5]", kPlus, kPlus, "NCC"),
     "Line 13:  Unidentified MARKER found. Ignored.\n"
     "Warning:  Non-integral bound value 8.5 for integer column 'x'.\n"},
    {"negative and zero upper bounds without a lower bound, minus infinity without an upper one",
     kTop + "BOUNDS\n UP b  x  -5\n UP b  y  0\n MI b  z\n" + kEnd,
     model_of("[-inf,-5]", "[0,0]", "[-inf,inf]"),
     "Warning:  Lower bound on column 'x' in bound 'b'\n          changed to minus infinity.\n"
     "Warning:  Column 'y' in bound 'b' is Fixed.\nWarning:  Column 'z' in bound 'b' is Free.\n"},
    {"the same for integer columns, and not with a lower bound",
     kTop + "BOUNDS\n UI b  x  -5\n LO b  y  -7\n UP b  y  -5\n FR b  z\n" + kEnd,
     model_of("[-inf,-5]", "[-7,-5]", "[-inf,inf]", "ICC"),
     "Warning:  Lower bound on column 'x' in bound 'b'\n          changed to minus infinity.\n"},
    {"only the first set of each section, unknown names in the others",
     kTop +
         "RHS\n    r1  a  1\n    r2  nowhere  2\n    r2  b  3\nRANGES\n    g1  b  1\n    g2  b  2\nBOUNDS\n "
         "UP b1  x  1\n"
         " UP b2  x  2\n UP b2  nobody  2\n" +
         kEnd,
     model_of("[0,1]", kPlus, kPlus, "---", "a L 1\nb R 0 1\nc E 0\n"),
     "Warning:  More than one RHS set specified. Only the first set is used.\n"
     "Warning:  More than one range set specified. Only the first set is used.\n"
     "Warning:  More than one bound set specified. Only the first set is used.\n"},
    {"right-hand sides without a set name", kTop + "RHS\n    a  4  b  -1\n    c  2\n" + kEnd,
     model_of(kPlus, kPlus, kPlus, "---", "a L 4\nb G -1\nc E 2\n"),
     "Warning:  Blank RHS name changed to 'rhs'.\n"},
    {"a column that has the default name", kRows + "COLUMNS\n    rhs  a  1\nRHS\n    a  4\n" + kEnd,
     "min 0\nrhs - 0 [0,inf] a:1\na L 4\nb G 0\nc E 0\n",
     "Warning:  Blank RHS name unchanged.  Column with name 'rhs' already exists.\n"},
    {"right-hand side of the objective, absent numbers",
     kTop + "RHS\n    rhs  obj  4  a  1\n    rhs  b\nBOUNDS\n LO bnd  x\n" + kEnd,
     model_of(kPlus, kPlus, kPlus, "---", "a L 1\nb G 0\nc E 0\n"),
     "Warning, line 13:  OBJ coefficient in RHS section ignored.\nWarning:  Empty numeric fields read as "
     "zeros.\n"},
    {"sections out of order", kTop + "BOUNDS\n UP b  x  4\nRHS\n    r  a  1\nOBJSENSE\n    MAX\n" + kEnd,
     "max" + model_of("[0,4]", kPlus, kPlus, "---", "a L 1\nb G 0\nc E 0\n").substr(3),
     "Warning, line 14:  RHS section illegal or out of order.\n"
     "Warning, line 16:  OBJSENSE section illegal or out of order.\n"},
    {"no end", kTop, model_of(kPlus, kPlus, kPlus), "Warning, line 11:  'ENDATA' missing.\n"},
    {"names with blanks in the card layout, of rows, columns and sets",
     "NAME\n"
     "ROWS\n"
     " N  COST\n"
     " L  R 1\n"
     " G  R 2\n"
     "COLUMNS\n"
     "    C  1      COST                1.   R 1               -2.5\n"
     "    C  1      R 2                 3.\n"
     "    C  2      R 1                 4.\n"
     "RHS\n"
     "    MY RHS    R 1                 5.   R 2                 6.\n"
     "RANGES\n"
     "    A RNG     R 1                 7.\n"
     "BOUNDS\n"
     " UP B 1       C  1                8.\n"
     " MI B 1       C  2\n"
     " UP B 1       C  2                9.\n" +
         kEnd,
     "min 0\nC  1 - 1 [0,8] R 1:-2.5 R 2:3\nC  2 - 0 [-inf,9] R 1:4\nR 1 R 5 -7\nR 2 G 6\n"},
    {"blanks in column names only, met late; a marker and an empty number between cards",
     "NAME\n"
     "ROWS\n"
     " N  COST\n"
     " L  R1\n"
     "COLUMNS\n"
     "    X         R1                  1.\n"
     "    MARKER                 'MARKER'                 'INTORG'\n"
     "    A 5       R1                  2.   COST                3.\n"
     "    A 6       R1\n"
     "BOUNDS\n"
     " UP           A 5                 4.\n" +
         kEnd,
     "min 0\nX C 0 [0,inf] R1:1\nA 5 I 3 [0,4] R1:2\nA 6 I 0 [0,inf]\nR1 L 0\n",
     "Warning:  Empty numeric fields read as zeros.\n"},
    {"names that are numbers",
     "NAME\nROWS\n N 0\n L 1\n L 2\nCOLUMNS\n 3 0 1 1 2\n 3 2 3\nRHS\n 1 2 2 3\nBOUNDS\n UP 3 4\n" + kEnd,
     "min 0\n3 - 1 [0,4] 1:2 2:3\n1 L 2\n2 L 3\n", "Warning:  Blank RHS name changed to 'rhs'.\n"},
    {"numbers in all spellings; zeros are no entries",
     "NAME\nROWS\n N o\n L r\n L s\nCOLUMNS\n v o 1.5D+02 r 1d-2\n w r -.5 s +7.\n x r 0 s 0.1\n y r 1e-400 "
     "s 123456789012345678\n"
     " z r 4.9e-324 s 1.7976931348623157e308\n" +
         kEnd,
     "min 0\nv - 150 [0,inf] r:0.01\nw - 0 [0,inf] r:-0.5 s:7\nx - 0 [0,inf] s:0.1\ny - 0 [0,inf] "
     "s:1.23456789012346e+17\n"
     "z - 0 [0,inf] r:4.94065645841247e-324 s:1.79769313486232e+308\nr L 0\ns L 0\n"},
    {"an integer section without columns is no type",
     kRows + "COLUMNS\n M 'MARKER' 'INTORG'\n M 'MARKER' 'INTEND'\n x a 1\n" + kEnd,
     "min 0\nx - 0 [0,inf] a:1\na L 0\nb G 0\nc E 0\n"},
    {"families that hold nothing", kTop + "SOS\nQMATRIX\n x x 0\nQCMATRIX a\nINDICATORS\n" + kEnd,
     model_of(kPlus, kPlus, kPlus)},
};

TEST_F(MpsReader, ReadsTheModelAndSaysWhatIsDoubtful) {
  for (const ModelCase& c : kModels) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(read(c.text), 0);
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(model(), c.model);
    EXPECT_EQ(warnings(), c.warnings);
  }
}

TEST_F(MpsReader, TellsWhatItChose) {
  ASSERT_EQ(read(kTop + "RHS\n    r1  a  1\nRANGES\n    g1  a  1\nBOUNDS\n UP b1  x  1\n" + kEnd), 0);
  EXPECT_EQ(
      results(),
      "Selected objective sense:  MINIMIZE\nSelected objective  name:  obj\nSelected RHS        name:  r1\n"
      "Selected range      name:  g1\nSelected bound      name:  b1\n");
  ASSERT_EQ(read("NAME\nOBJSENSE\n MAX\nROWS\n N o\n N p\n L r\nCOLUMNS\n x o 1\nRHS\n r 1\n" + kEnd), 0);
  EXPECT_EQ(results(),
            "Specified objective sense: MAXIMIZE\nSelected objective  name:  o  [1 free row deleted]\n"
            "Selected RHS        name:  rhs\n");
  ASSERT_EQ(read("NAME\nOBJNAME\n q\nROWS\n N o\n N p\n N q\nCOLUMNS\n x o 1 q 2\n" + kEnd), 0);
  EXPECT_EQ(results(),
            "Selected objective sense:  MINIMIZE\nSelected objective  name:  q  [2 free rows deleted]\n");
  char name[8];
  int surplus = 0;
  ASSERT_EQ(TVKgetobjname(env_, lp_, name, sizeof name, &surplus), 0);
  EXPECT_STREQ(name, "q");
}

/* 23 columns with a doubtful bound of each kind: 20 are told, 3 are counted. */
TEST_F(MpsReader, PrintsTwentyWarningsOfAKindAndCountsTheOthers) {
  struct Case {
    const char* bound;
    const char* told;
    const char* counted;
    int lines;
  };
  const Case cases[] = {
      {" MI b  %\n", "'x19' in bound 'b' is Free.\n", "3 Column-free warnings not printed.\n", 20},
      {" UP b  %  -1\n", "'x19' in bound 'b'\n", "3 Minus-infinity warnings not printed.\n", 40},
      {" UP b  %  0\n", "'x19' in bound 'b' is Fixed.\n", "3 Column-fixed warnings not printed.\n", 20},
      {" SC b  %  4\n", "'x19' in bound 'b'\n", "3 semi-continuous bound warnings not printed.\n", 40},
      {" UI b  %  1.5\n", "column 'x19'.\n", "3 Bound-integrality warnings not printed.\n", 20},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bound);
    std::string columns, bounds;
    for (int k = 0; k < 23; ++k) {
      const std::string name = "x" + std::to_string(k);
      columns += "    " + name + "  a  1\n";
      bounds += std::string(c.bound).replace(std::string(c.bound).find('%'), 1, name);
    }
    ASSERT_EQ(read(kRows + "COLUMNS\n" + columns + "BOUNDS\n" + bounds + kEnd), 0);
    const std::string printed = warnings();
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), c.lines + 1);
    EXPECT_NE(printed.find(c.told), std::string::npos);
    EXPECT_EQ(printed.find("'x20'"), std::string::npos);
    EXPECT_TRUE(printed.ends_with(c.counted)) << printed;
  }
  std::string rhs;
  for (int k = 0; k < 21; ++k) rhs += "    r  obj  1\n";
  ASSERT_EQ(read(kTop + "RHS\n" + rhs + kEnd), 0);
  EXPECT_TRUE(warnings().ends_with("\n1 OBJ warnings not printed.\n"));
}

TEST_F(MpsReader, RepeatedNamesAreToldTogether) {
  std::string rows = "NAME\nROWS\n N  o\n", columns = "COLUMNS\n";
  for (int k = 0; k < 23; ++k) rows += " L  r" + std::to_string(k) + "\n G  r" + std::to_string(k) + "\n";
  EXPECT_EQ(read(rows + "COLUMNS\n x o 1\n" + kEnd), 1445);
  std::string printed = errors();
  EXPECT_TRUE(
      printed.starts_with("TOVIK Error  1445: Row 'r0' repeats.\nTOVIK Error  1445: Row 'r1' repeats.\n"));
  EXPECT_TRUE(printed.ends_with("'r19' repeats.\nTOVIK Error  1477: 3 Row repeats messages not printed.\n"))
      << printed;

  for (int k = 0; k < 46; ++k) columns += "    x" + std::to_string(k % 23) + "  a  1\n";
  EXPECT_EQ(read(kRows + columns + kEnd), 1446);
  printed = errors();
  EXPECT_TRUE(printed.starts_with("TOVIK Error  1446: Column 'x0' repeats.\n"));
  EXPECT_TRUE(
      printed.ends_with("'x19' repeats.\nTOVIK Error  1478: 3 Column repeats messages not printed.\n"));

  EXPECT_EQ(read(kRows + "COLUMNS\n    x  a  1  a  1\n    y  a  1\n    x2  b  1\n    x2  b  1\n" + kEnd),
            1443);
  EXPECT_EQ(errors(),
            "TOVIK Error  1443: Column 'x' has repeated row 'a'.\n"
            "TOVIK Error  1443: Column 'x2' has repeated row 'b'.\n");
  EXPECT_EQ(read("NAME\nROWS\n N o\n L o\nCOLUMNS\n x o 1\n" + kEnd), 1445);
  EXPECT_EQ(errors(), "TOVIK Error  1445: Row 'o' repeats.\n");
}

TEST_F(MpsReader, KeepsLongNamesApartAndCutsTooLongOnes) {
  const std::string nine = "ROW45678", base(255, 'n');
  std::string text = "NAME\nROWS\n N o\n";
  for (const char* tail : {"", "9", "90", "91", "9012345678901234567", "9012345678901234568"})
    text += " L " + nine + tail + "\n";
  ASSERT_EQ(read(text + "COLUMNS\n column_one " + nine + "91 2\n column_two " + nine +
                 "9012345678901234568 3\n" + kEnd),
            0);
  EXPECT_EQ(
      model().substr(0, model().find("\nROW")),
      "min 0\ncolumn_one - 0 [0,inf] ROW4567891:2\ncolumn_two - 0 [0,inf] ROW456789012345678901234568:3");

  std::string columns;
  for (int k = 0; k < 22; ++k) columns += " " + std::to_string(10 + k) + base + " " + base + "xyz 1\n";
  ASSERT_EQ(read("NAME\nROWS\n N o\n L " + base + "abc\nCOLUMNS\n" + columns + kEnd), 0);
  const std::string printed = warnings();
  EXPECT_TRUE(printed.starts_with("Warning, line 4:  '" + base + "abc' truncated.\n"));
  EXPECT_TRUE(printed.ends_with("\n25 truncation warning messages not printed.\n"));
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 22);

  // Digits beyond any name's length are no name.
  ASSERT_EQ(read(kRows + "COLUMNS\n x a 0." + std::string(300, '0') + "1e301\n" + kEnd), 0);
  EXPECT_EQ(model(), "min 0\nx - 0 [0,inf] a:1\na L 0\nb G 0\nc E 0\n");
  EXPECT_EQ(read(kTop + " x" + std::string(70000, ' ') + "a 1\n" + kEnd), 1465);
  EXPECT_EQ(read(kTop + " x" + std::string(700000, ' ') + "a 1\n" + kEnd), 1465);
  EXPECT_EQ(errors().substr(0, 67), "TOVIK Error  1465: Line 12: Line longer than limit of 65535 charact");
}

/* Each line of a file that is longer than any buffer must arrive whole. */
TEST_F(MpsReader, ReadsManyBlocks) {
  const int count = 60000;
  std::ostringstream text;
  text << "NAME\nROWS\n N  o\n";
  for (int i = 0; i < count; ++i) text << " G  row" << i << '\n';
  text << "COLUMNS\n";
  for (int j = 0; j < count; ++j)
    text << "    x" << j << "  row" << j << "  " << j + 1 << "  row" << (j + 7) % count << "  -0.25\n";
  text << "RHS\n";
  for (int i = 0; i < count; ++i) text << "    rhs  row" << i << "  " << i << '\n';
  text << "BOUNDS\n";
  for (int j = count - 1; j >= 0; j -= 2) text << " UP b  x" << j << "  " << j << ".5\n";
  ASSERT_EQ(read(text.str() + kEnd), 0) << errors();
  ASSERT_EQ(TVKgetnumnz(env_, lp_), 2 * count);
  for (int k = 1; k < count; k += 997) {
    double value = 0;
    ASSERT_EQ(TVKgetcoef(env_, lp_, k, k, &value), 0);
    EXPECT_EQ(value, k + 1);
    ASSERT_EQ(TVKgetcoef(env_, lp_, (k + 7) % count, k, &value), 0);
    EXPECT_EQ(value, -0.25);
    ASSERT_EQ(TVKgetrhs(env_, lp_, &value, k, k), 0);
    EXPECT_EQ(value, k);
    ASSERT_EQ(TVKgetub(env_, lp_, &value, k, k), 0);
    EXPECT_EQ(value, k % 2 == 1 ? k + 0.5 : 1e20);
  }
}

TEST_F(MpsReader, BrokenFilesGiveTheirCodeAndLeaveTheProblemAlone) {
  ASSERT_EQ(read(kTop + "BOUNDS\n UI  x  4\n" + kEnd), 0);
  EXPECT_GT(check_broken_files(TOVIK_SOURCE_DIR "/tests/fileio/corpus/mps", "mps"), 60);
}

struct LineCase {
  std::string text;
  const char* line;
};

TEST_F(MpsReader, ErrorsSayWhereAndWhat) {
  const LineCase cases[] = {
      {kTop + "RHS\n    r  a  1x\n", "TOVIK Error  1434: Line 13: Couldn't convert '1x' to a number.\n"},
      {kRows + "COLUMNS\n    x  a  1  b  2  3\n",
       "TOVIK Error  1434: Line 8: Couldn't convert '2  3' to a number.\n"},
      {kRows + "COLUMNS\n    x  a  1e999\n", "TOVIK Error  1435: Line 8: Exponent 'e999' out of range.\n"},
      {kRows + "COLUMNS\n    x  d  1\n", "TOVIK Error  1448: Line 8: 'd' is not a row name.\n"},
      {kTop + "BOUNDS\n UP b  w  1\n", "TOVIK Error  1449: Line 13: 'w' is not a column name.\n"},
      {kTop + "BOUNDS\n\n XX b  x  1\n", "TOVIK Error  1457: Line 14: Unrecognized bound type 'XX'.\n"},
      {kTop + "RHS\n    r  a  1\n    r  a  2\n", "TOVIK Error  1447: Line 14: RHS 'a' repeats.\n"},
      {kTop + "SOS\n S1 s\n    x  1\n    x  2\n", "TOVIK Error  1479: Line 15: s x repeats.\n"},
      {"NAME\nOBJSENSE\n    UP\n", "TOVIK Error  1487: Line 3: Unrecognized objective sense 'UP'.\n"},
      {kTop + "QCMATRIX a\n    x  y  1\n" + kEnd, "TOVIK Error  5012: Q in a is not symmetric.\n"},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_NE(read(c.text), 0);
    EXPECT_EQ(errors(), c.line);
  }
}

/* Sizes of the public test sets. The sizes listed for the first are those of a reading that ignores its
 * blanks. */
TEST_F(MpsReader, ReadsThePublicTestSets) {
  const fs::path models = fs::path(TOVIK_SOURCE_DIR) / "../shared/models";
  std::ifstream reference(models / "reference.csv");
  if (!reference) GTEST_SKIP() << "no test sets beside the project";
  int files = 0;
  for (std::string line; std::getline(reference, line);) {
    std::replace(line.begin(), line.end(), ',', ' ');
    std::istringstream fields(line);
    std::string file;
    int rows = 0, columns = 0, nonzeros = 0;
    fields >> file >> rows >> columns >> nonzeros;
    const bool chosen = file.find("/netlib/") != std::string::npos ||
                        file.find("/infeasible/") != std::string::npos ||
                        file.find("/miplib3/") != std::string::npos;
    if (!chosen || fs::file_size(models / file) > 100000) continue;
    SCOPED_TRACE(file);
    if (file.find("/forplan") != std::string::npos) columns = 421, nonzeros = 4563;
    ASSERT_EQ(TVKreadcopyprob(env_, lp_, (models / file).c_str(), nullptr), 0) << errors();
    EXPECT_EQ(TVKgetnumrows(env_, lp_), rows);
    EXPECT_EQ(TVKgetnumcols(env_, lp_), columns);
    EXPECT_EQ(TVKgetnumnz(env_, lp_), nonzeros);
    ++files;
  }
  EXPECT_GT(files, 100);
}

}  // namespace
