// Writes DC's demonstration inputs: a helical peptide built from standard
// bond geometry (amide and alpha protons included) and a table of its N-H
// and CA-HA couplings synthesised from a chosen alignment tensor with a
// little noise. Everything here is computed independently of DC itself, so
// that the fitted tensor DC reports can be compared with the one chosen.
//
// Usage: make_demo <output directory>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Vec {
    double x, y, z;
};

Vec operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec operator*(Vec a, double s) { return {a.x * s, a.y * s, a.z * s}; }
double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec cross(Vec a, Vec b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vec unit(Vec a) { return a * (1.0 / std::sqrt(dot(a, a))); }
double radians(double degrees) { return degrees * kPi / 180.0; }

// Places d bonded to c with the given length, angle b-c-d and dihedral a-b-c-d.
Vec place(Vec a, Vec b, Vec c, double length, double angle, double dihedral) {
    Vec bc = unit(c - b);
    Vec n = unit(cross(b - a, bc));
    Vec m = cross(n, bc);
    double t = radians(180.0 - angle), p = radians(dihedral);
    Vec local{length * std::cos(t), length * std::sin(t) * std::cos(p),
              length * std::sin(t) * std::sin(p)};
    return c + bc * local.x + m * local.y + n * local.z;
}

struct Atom {
    std::string name, resName;
    int resID;
    Vec r;
};

struct Tensor {
    double da, dr, psi, theta, phi;
};

// Rotation Rz(phi) Ry(theta) Rx(psi) from structure coordinates to the tensor frame.
Vec toTensorFrame(const Tensor& t, Vec v) {
    double cp = std::cos(radians(t.psi)), sp = std::sin(radians(t.psi));
    double ct = std::cos(radians(t.theta)), st = std::sin(radians(t.theta));
    double cf = std::cos(radians(t.phi)), sf = std::sin(radians(t.phi));
    Vec x1{v.x, cp * v.y - sp * v.z, sp * v.y + cp * v.z};
    Vec y1{ct * x1.x + st * x1.z, x1.y, -st * x1.x + ct * x1.z};
    return {cf * y1.x - sf * y1.y, sf * y1.x + cf * y1.y, y1.z};
}

// Dipolar interaction constant of a pair at distance r (Angstrom), Hz.
double dipolarInteraction(double gammaI, double gammaJ, double r) {
    const double mu0HbarOver4Pi2 = 3.356809e-12;
    return mu0HbarOver4Pi2 * gammaI * gammaJ / (r * r * r);
}

double coupling(const Tensor& t, double di, Vec bond) {
    Vec u = toTensorFrame(t, unit(bond));
    return std::fabs(di) * (t.da * (3.0 * u.z * u.z - 1.0) + 1.5 * t.dr * (u.x * u.x - u.y * u.y));
}

// A small, portable pseudo-random source so the demo data never change.
struct Noise {
    unsigned long long state = 20261122ULL;
    double uniform() {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>((state >> 11) + 1) / 9007199254740993.0;
    }
    double gaussian(double sigma) {
        return sigma * std::sqrt(-2.0 * std::log(uniform())) * std::cos(2.0 * kPi * uniform());
    }
};

std::vector<Atom> buildPeptide(const std::vector<std::string>& sequence, double phi, double psi) {
    std::vector<Atom> atoms;
    Vec n{0.0, 0.0, 0.0}, ca{1.458, 0.0, 0.0};
    Vec c = place({0.0, 1.0, 0.0}, n, ca, 1.525, 111.2, -60.0);
    Vec prevC{};
    for (std::size_t i = 0; i < sequence.size(); i++) {
        int resID = static_cast<int>(i) + 1;
        const std::string& res = sequence[i];
        Vec o = place(n, ca, c, 1.231, 120.5, psi + 180.0);
        atoms.push_back({"N", res, resID, n});
        atoms.push_back({"CA", res, resID, ca});
        atoms.push_back({"C", res, resID, c});
        atoms.push_back({"O", res, resID, o});
        if (i > 0) atoms.push_back({"H", res, resID, place(prevC, ca, n, 1.02, 119.0, 180.0)});
        Vec hRef = place(c, n, ca, 1.09, 109.5, res == "GLY" ? 120.0 : -120.0);
        if (res == "GLY") {
            atoms.push_back({"HA2", res, resID, hRef});
            atoms.push_back({"HA3", res, resID, place(c, n, ca, 1.09, 109.5, -120.0)});
        } else {
            atoms.push_back({"HA", res, resID, hRef});
            atoms.push_back({"CB", res, resID, place(c, n, ca, 1.53, 110.5, 122.5)});
        }
        Vec nextN = place(n, ca, c, 1.329, 116.2, psi);
        Vec nextCA = place(ca, c, nextN, 1.458, 121.7, 180.0);
        Vec nextC = place(c, nextN, nextCA, 1.525, 111.2, phi);
        prevC = c;
        n = nextN;
        ca = nextCA;
        c = nextC;
    }
    return atoms;
}

const Atom* findAtom(const std::vector<Atom>& atoms, int resID, const std::string& name) {
    for (const Atom& a : atoms) {
        if (a.resID == resID && a.name == name) return &a;
    }
    return nullptr;
}

bool writeStructure(const std::string& path, const std::vector<Atom>& atoms) {
    FILE* out = std::fopen(path.c_str(), "w");
    if (!out) return false;
    std::fprintf(out, "REMARK Demonstration peptide: ideal alpha helix, standard geometry.\n");
    int serial = 1;
    for (const Atom& a : atoms) {
        std::fprintf(out, "ATOM  %5d  %-3s %-3s A%4d    %8.3f%8.3f%8.3f  1.00  0.00           %c\n",
                     serial++, a.name.c_str(), a.resName.c_str(), a.resID, a.r.x, a.r.y, a.r.z,
                     a.name[0]);
    }
    std::fprintf(out, "END\n");
    std::fclose(out);
    return true;
}

struct Pair {
    const char* heavy;
    const char* proton;
    double gammaHeavy;
    double length;
    double sigma;
};

bool writeCouplings(const std::string& path, const std::vector<Atom>& atoms,
                    const std::vector<std::string>& sequence, const Tensor& t) {
    FILE* out = std::fopen(path.c_str(), "w");
    if (!out) return false;
    const double gammaH = 2.6752e8;
    const Pair pairs[] = {{"N", "H", -2.7116e7, 1.041, 0.2}, {"CA", "HA", 6.7283e7, 1.107, 0.5}};
    std::fprintf(out,
                 "REMARK Demonstration couplings: Da %.2e Dr %.2e PSI %.1f THETA %.1f PHI %.1f\n",
                 t.da, t.dr, t.psi, t.theta, t.phi);
    std::fprintf(out,
                 "\nVARS   RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n");
    std::fprintf(out, "FORMAT %%5d %%6s %%6s %%5d %%6s %%6s %%9.3f %%9.3f %%.2f\n\n");
    Noise noise;
    for (const Pair& pair : pairs) {
        for (std::size_t i = 0; i < sequence.size(); i++) {
            int resID = static_cast<int>(i) + 1;
            std::string proton = pair.proton;
            if (proton == "HA" && sequence[i] == "GLY") continue;
            const Atom* heavy = findAtom(atoms, resID, pair.heavy);
            const Atom* h = findAtom(atoms, resID, proton);
            if (!heavy || !h) continue;
            double di = dipolarInteraction(gammaH, pair.gammaHeavy, pair.length);
            double d = coupling(t, di, heavy->r - h->r) + noise.gaussian(pair.sigma);
            std::fprintf(out, "%5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n", resID,
                         sequence[i].c_str(), pair.heavy, resID, sequence[i].c_str(),
                         proton.c_str(), d, pair.sigma, 1.0);
        }
    }
    std::fclose(out);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: make_demo <output directory>\n");
        return 1;
    }
    std::string dir = argv[1];
    const std::vector<std::string> sequence = {"GLY", "ALA", "LEU", "ALA", "GLU", "ALA",
                                               "LYS", "ALA", "GLY", "ALA", "LEU", "ALA",
                                               "ARG", "ALA", "GLU", "ALA", "LEU", "GLY"};
    const Tensor tensor{5.0e-4, 1.5e-4, 15.0, 25.0, 35.0};
    std::vector<Atom> atoms = buildPeptide(sequence, -57.0, -47.0);
    if (!writeStructure(dir + "/peptide.pdb", atoms) ||
        !writeCouplings(dir + "/couplings.tab", atoms, sequence, tensor)) {
        std::fprintf(stderr, "make_demo: cannot write into %s\n", dir.c_str());
        return 1;
    }
    std::printf(
        "Demo tensor: Da %.3e  Dr %.3e  Rhombicity %.3f  Euler (PSI THETA PHI) %.1f %.1f %.1f\n",
        tensor.da, tensor.dr, tensor.dr / tensor.da, tensor.psi, tensor.theta, tensor.phi);
    return 0;
}
