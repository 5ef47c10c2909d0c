// Small inputs several fuzz targets run against, kept in the targets
// themselves so that they do not depend on the working directory: a
// six-residue peptide (chain A, segment PEP, protons included) and coupling
// tables for it, with and without chain and segment columns.
#pragma once

namespace fuzz {

// Residues 1-6 of a fusion peptide model.
inline constexpr const char* kPeptidePDB =
    R"DC(REMARK Residues 1-6 of a fusion peptide model, segment PEP.
ATOM      1  N   GLY A   1      18.410  -3.802   7.150  1.00  0.00      PEP  N
ATOM      2  CA  GLY A   1      18.555  -4.461   5.822  1.00  0.00      PEP  C
ATOM      3  C   GLY A   1      17.196  -4.554   5.152  1.00  0.00      PEP  C
ATOM      4  O   GLY A   1      16.955  -3.923   4.122  1.00  0.00      PEP  O
ATOM      5  H1  GLY A   1      19.260  -3.248   7.357  1.00  0.00      PEP  H
ATOM      6  HA2 GLY A   1      19.226  -3.879   5.205  1.00  0.00      PEP  H
ATOM      7  HA3 GLY A   1      18.954  -5.453   5.952  1.00  0.00      PEP  H
ATOM      8  N   LEU A   2      16.305  -5.344   5.740  1.00  0.00      PEP  N
ATOM      9  CA  LEU A   2      14.965  -5.512   5.185  1.00  0.00      PEP  C
ATOM     10  C   LEU A   2      14.212  -4.182   5.194  1.00  0.00      PEP  C
ATOM     11  O   LEU A   2      13.781  -3.693   4.145  1.00  0.00      PEP  O
ATOM     12  CB  LEU A   2      14.187  -6.559   6.018  1.00  0.00      PEP  C
ATOM     13  H   LEU A   2      16.549  -5.818   6.556  1.00  0.00      PEP  H
ATOM     14  HA  LEU A   2      15.043  -5.860   4.172  1.00  0.00      PEP  H
ATOM     15  N   PHE A   3      14.061  -3.600   6.374  1.00  0.00      PEP  N
ATOM     16  CA  PHE A   3      13.362  -2.333   6.496  1.00  0.00      PEP  C
ATOM     17  C   PHE A   3      14.149  -1.228   5.806  1.00  0.00      PEP  C
ATOM     18  O   PHE A   3      13.569  -0.350   5.170  1.00  0.00      PEP  O
ATOM     19  CB  PHE A   3      13.153  -1.979   7.972  1.00  0.00      PEP  C
ATOM     20  H   PHE A   3      14.422  -4.032   7.175  1.00  0.00      PEP  H
ATOM     21  HA  PHE A   3      12.403  -2.413   6.013  1.00  0.00      PEP  H
ATOM     22  N   GLY A   4      15.466  -1.275   5.928  1.00  0.00      PEP  N
ATOM     23  CA  GLY A   4      16.310  -0.269   5.304  1.00  0.00      PEP  C
ATOM     24  C   GLY A   4      16.081  -0.226   3.794  1.00  0.00      PEP  C
ATOM     25  O   GLY A   4      16.078   0.845   3.188  1.00  0.00      PEP  O
ATOM     26  H   GLY A   4      15.881  -1.996   6.447  1.00  0.00      PEP  H
ATOM     27  HA2 GLY A   4      16.082   0.701   5.728  1.00  0.00      PEP  H
ATOM     28  HA3 GLY A   4      17.345  -0.504   5.491  1.00  0.00      PEP  H
ATOM     29  N   ALA A   5      15.886  -1.400   3.193  1.00  0.00      PEP  N
ATOM     30  CA  ALA A   5      15.655  -1.485   1.752  1.00  0.00      PEP  C
ATOM     31  C   ALA A   5      14.346  -0.805   1.376  1.00  0.00      PEP  C
ATOM     32  O   ALA A   5      14.277  -0.080   0.386  1.00  0.00      PEP  O
ATOM     33  CB  ALA A   5      15.609  -2.952   1.317  1.00  0.00      PEP  C
ATOM     34  H   ALA A   5      15.892  -2.222   3.725  1.00  0.00      PEP  H
ATOM     35  HA  ALA A   5      16.467  -0.995   1.235  1.00  0.00      PEP  H
ATOM     36  N   ILE A   6      13.310  -1.047   2.170  1.00  0.00      PEP  N
ATOM     37  CA  ILE A   6      12.003  -0.450   1.901  1.00  0.00      PEP  C
ATOM     38  C   ILE A   6      12.041   1.060   2.124  1.00  0.00      PEP  C
ATOM     39  O   ILE A   6      11.527   1.833   1.312  1.00  0.00      PEP  O
ATOM     40  CB  ILE A   6      10.943  -1.076   2.809  1.00  0.00      PEP  C
ATOM     41  H   ILE A   6      13.425  -1.638   2.951  1.00  0.00      PEP  H
ATOM     42  HA  ILE A   6      11.742  -0.646   0.874  1.00  0.00      PEP  H
END
)DC";

// N-H and CA-HA couplings of the peptide, one row without an observation.
inline constexpr const char* kCouplingTable =
    R"DC(REMARK Couplings of residues 1-6 from a known tensor, with small offsets.

VARS   RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W
FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f

    2    LEU      N     2    LEU      H     2.602     0.400 1.00
    3    PHE      N     3    PHE      H     5.409     0.400 1.00
    4    GLY      N     4    GLY      H    -3.365     0.400 1.00
    5    ALA      N     5    ALA      H   -11.725     0.400 1.00
    6    ILE      N     6    ILE      H    -3.686     0.400 1.00
    1    GLY     CA     1    GLY    HA#   -47.673     1.600 1.00
    2    LEU     CA     2    LEU     HA    23.451     1.600 1.00
    3    PHE     CA     3    PHE     HA    25.554     1.600 1.00
    4    GLY     CA     4    GLY    HA#     3.223     1.600 1.00
    5    ALA     CA     5    ALA     HA   -29.639     1.600 1.00
    6    ILE     CA     6    ILE     HA    37.305     1.600 1.00
    7    ALA      N     7    ALA      H     2.500     0.400 1.00
    6    ILE     CA     6    ILE     CB  9999.000     1.000 1.00
)DC";

// The same couplings with chain and segment columns.
inline constexpr const char* kChainCouplingTable =
    R"DC(REMARK Couplings of residues 1-6 from a known tensor, with small offsets.

VARS   RESID_I RESNAME_I ATOMNAME_I CHAINNAME_I SEGNAME_I RESID_J RESNAME_J ATOMNAME_J CHAINNAME_J SEGNAME_J D DD W
FORMAT %5d %6s %6s %2s %4s %5d %6s %6s %2s %4s %9.3f %9.3f %.2f

    2    LEU      N  A  PEP     2    LEU      H  A  PEP     2.602     0.400 1.00
    3    PHE      N  A  PEP     3    PHE      H  A  PEP     5.409     0.400 1.00
    4    GLY      N  A  PEP     4    GLY      H  A  PEP    -3.365     0.400 1.00
    5    ALA      N  A  PEP     5    ALA      H  A  PEP   -11.725     0.400 1.00
    6    ILE      N  A  PEP     6    ILE      H  A  PEP    -3.686     0.400 1.00
    1    GLY     CA  A  PEP     1    GLY    HA#  A  PEP   -47.673     1.600 1.00
    2    LEU     CA  A  PEP     2    LEU     HA  A  PEP    23.451     1.600 1.00
    3    PHE     CA  A  PEP     3    PHE     HA  A  PEP    25.554     1.600 1.00
    4    GLY     CA  A  PEP     4    GLY    HA#  A  PEP     3.223     1.600 1.00
    5    ALA     CA  A  PEP     5    ALA     HA  A  PEP   -29.639     1.600 1.00
    6    ILE     CA  A  PEP     6    ILE     HA  A  PEP    37.305     1.600 1.00
    7    ALA      N  A  PEP     7    ALA      H  A  PEP     2.500     0.400 1.00
    6    ILE     CA  A  PEP     6    ILE     CB  A  PEP  9999.000     1.000 1.00
)DC";

}  // namespace fuzz
