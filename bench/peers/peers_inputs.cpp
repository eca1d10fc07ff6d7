#include "peers_inputs.h"

#include <cmath>
#include <map>
#include <memory>
#include <utility>

#include <foundation/random.h>

namespace peers {
namespace {

constexpr double kCentreX = 500.0;
constexpr double kCentreY = 400.0;
constexpr double kRadius = 300.0;
constexpr int kBlobHarmonics = 8;
constexpr double kBlobAmplitude = 0.3;
constexpr double kSpikyInnerRadius = 0.2;
constexpr double kCrossingAngleJitter = 0.8;
constexpr double kCrossingRadiusJitter = 0.2;
constexpr std::size_t kQueryPointCount = 10000;
constexpr std::size_t kQuerySegmentCount = 1000;
constexpr double kQuerySegmentMaxFraction = 0.1;

xcVector<2> polar(double radius, double angle) {
    return xcVector<2>(kCentreX + radius * std::cos(angle), kCentreY + radius * std::sin(angle));
}

double angleStep(std::size_t n) {
    return 2.0 * xcPi / static_cast<double>(n);
}

Points blob(std::size_t n, xcRandomUniform& random) {
    double amplitude[kBlobHarmonics];
    double phase[kBlobHarmonics];
    for (int k = 0; k < kBlobHarmonics; ++k) {
        amplitude[k] = random.next(0.0, kBlobAmplitude) / (k + 1);
        phase[k] = random.next(0.0, 2.0 * xcPi);
    }
    Points p;
    p.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = static_cast<double>(i) * angleStep(n);
        double r = 1.0;
        for (int k = 0; k < kBlobHarmonics; ++k)
            r += amplitude[k] * std::cos((k + 1) * angle + phase[k]);
        p.push_back(polar(kRadius * r, angle));
    }
    return p;
}

Points spiky(std::size_t n, xcRandomUniform& random) {
    Points p;
    p.reserve(n);
    for (std::size_t i = 0; i < n; ++i)
        p.push_back(polar(kRadius * random.next(kSpikyInnerRadius, 1.0),
                          static_cast<double>(i) * angleStep(n)));
    return p;
}

Points crossing(std::size_t n, xcRandomUniform& random) {
    Points p;
    p.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = (static_cast<double>(i) +
                              random.next(-kCrossingAngleJitter, kCrossingAngleJitter)) *
                             angleStep(n);
        const double r = random.next(1.0 - kCrossingRadiusJitter, 1.0 + kCrossingRadiusJitter);
        p.push_back(polar(kRadius * r, angle));
    }
    return p;
}

xcRect boundingBox(const Points& p) {
    xcRect box = xcRect::at(p.front());
    for (const xcVector<2>& v : p)
        box = box.enclose(xcRect::at(v));
    return box;
}

xcVector<2> pointIn(const xcRect& box, xcRandomUniform& random) {
    return xcVector<2>(random.next(box.ul().x(), box.lr().x()),
                       random.next(box.ul().y(), box.lr().y()));
}

std::unique_ptr<Input> generate(Kind kind, std::size_t n) {
    std::unique_ptr<Input> in(new Input);
    in->kind = kind;
    in->n = n;
    in->label = std::string(kindName(kind)) + "/" + sizeName(n);
    xcRandomUniform random(1000 * static_cast<unsigned>(kind) + n);
    switch (kind) {
        case Kind::blob: in->points = blob(n, random); break;
        case Kind::spiky: in->points = spiky(n, random); break;
        case Kind::crossing: in->points = crossing(n, random); break;
    }
    in->box = boundingBox(in->points);
    for (std::size_t i = 0; i < kQueryPointCount; ++i)
        in->queryPoints.push_back(pointIn(in->box, random));
    const double diagonal = in->box.size().length();
    for (std::size_t i = 0; i < kQuerySegmentCount; ++i) {
        const xcVector<2> start = pointIn(in->box, random);
        const double length = random.next(0.0, kQuerySegmentMaxFraction * diagonal);
        const double angle = random.next(0.0, 2.0 * xcPi);
        in->querySegments.emplace_back(
            start, start + xcVector<2>(length * std::cos(angle), length * std::sin(angle)));
    }
    return in;
}

}  // namespace

const char* kindName(Kind kind) {
    switch (kind) {
        case Kind::blob: return "blob";
        case Kind::spiky: return "spiky";
        case Kind::crossing: return "crossing";
    }
    return "?";
}

std::string sizeName(std::size_t n) {
    if (n % 1024 == 0)
        return std::to_string(n / 1024) + "k";
    return std::to_string(n);
}

const Input& input(Kind kind, std::size_t n) {
    static std::map<std::pair<Kind, std::size_t>, std::unique_ptr<Input>> inputs;
    std::unique_ptr<Input>& slot = inputs[std::make_pair(kind, n)];
    if (!slot)
        slot = generate(kind, n);
    return *slot;
}

}  // namespace peers
