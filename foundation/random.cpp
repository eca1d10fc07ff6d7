#include <cmath>

#include <foundation/random.h>

double xcRandomUniform::below(double hi, double lo) { return std::nextafter(hi, lo); }
