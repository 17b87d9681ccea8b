// Fuzzes the whole path of zel station below the tool: arbitrary bytes read
// as a points file, every point stationed on a small alignment (a straight,
// a right-hand arc, a straight and a left-hand arc, with a profile of two
// grades and a parabolic vertical curve), one at a time and as a batch on two
// threads. Every row must be a point or a rejected row; every point must get a
// status, and on an element a station within the alignment and finite values;
// the batch must agree with the single calls bit for bit.
#include <zelalign/alignment.h>
#include <zelalign/error.h>
#include <zelalign/readers/points_csv.h>
#include <zellib/constants.h>

#include "fuzz_input.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr double Pi = zellib::CAPi;
// Points stationed per batch: enough for the two threads to split.
constexpr std::size_t MaxPoints = 256;
// How far the foot of a point abeam an end of the alignment may stray past
// that end through the rounding of the element projection (seen: 1.8e-16 m for
// a point 1 m beside the start of a straight). Such a foot lies outside the
// profile, so its design height and tunnel metre are not given.
constexpr double EndRounding = 1e-9;  // metres

zelalign::Alignment const& Track()
{
    static zelalign::Alignment const track = [] {
        using zelalign::HorizontalElement;
        using zellib::CACoordinate;
        double const arc1 = 100.0 * Pi / 2.0;
        double const arc2 = 50.0 * Pi / 2.0;
        std::vector<HorizontalElement> e;
        e.push_back(HorizontalElement::Line(0.0, 100.0, CACoordinate(0.0, 0.0), CACoordinate(0.0, 100.0)));
        e.push_back(HorizontalElement::Arc(100.0, arc1, CACoordinate(0.0, 100.0), CACoordinate(100.0, 200.0), 100.0));
        e.push_back(HorizontalElement::Line(100.0 + arc1, 200.0, CACoordinate(100.0, 200.0),
                                            CACoordinate(300.0, 200.0)));
        e.push_back(HorizontalElement::Arc(300.0 + arc1, arc2, CACoordinate(300.0, 200.0),
                                           CACoordinate(350.0, 250.0), -50.0));
        std::vector<zelalign::ProfilePoint> pvis(3);
        pvis[0].station = 0.0;
        pvis[0].height = 400.0;
        pvis[1].station = 200.0;
        pvis[1].height = 404.0;
        pvis[1].curve = zelalign::VerticalCurveType::Parabola;
        pvis[1].radius = 2000.0;
        pvis[2].station = 300.0 + arc1 + arc2;
        pvis[2].height = 402.0;
        return zelalign::Alignment("fuzz", zelalign::HorizontalAlignment(e), zelalign::VerticalProfile(pvis));
    }();
    return track;
}

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    zelalign::Alignment const& track = Track();
    std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
    zelalign::PointsCsvReader reader(in, "fuzz.csv");
    zelalign::MeasuredPoint point;
    std::vector<double> east, north, height;
    std::vector<zelalign::StationedPoint> single;
    try {
        for (auto r = reader.Next(&point); r != zelalign::PointsCsvReader::Row::End && east.size() < MaxPoints;
             r = reader.Next(&point)) {
            if (r == zelalign::PointsCsvReader::Row::Rejected) {
                continue;
            }
            zelalign::StationedPoint const p = track.Station(point.east, point.north, point.height);
            zelfuzz::Require(p.status != zelalign::ProjectionStatus::Invalid);  // the reader gives finite coordinates
            if (p.status == zelalign::ProjectionStatus::OnElement) {
                zelfuzz::Require(p.station >= track.StartStation() - EndRounding &&
                                 p.station <= track.EndStation() + EndRounding);
                zelfuzz::Require(p.element >= 0 && p.element < static_cast<int>(track.Horizontal().Size()));
                zelfuzz::Require(std::isfinite(p.offset) && std::isfinite(p.azimuth) && p.azimuth >= 0.0 &&
                                 p.azimuth < 2.0 * Pi);
                if (track.Contains(p.station)) {
                    zelfuzz::Require(std::isfinite(p.designHeight) && std::isfinite(p.tunnelMetre));
                }
            }
            east.push_back(point.east);
            north.push_back(point.north);
            height.push_back(point.height);
            single.push_back(p);
        }
    } catch (zelalign::DataError const&) {
        return 0;  // a UTF-16 or UTF-32 file, refused as a whole
    }
    std::vector<zelalign::StationedPoint> batch(east.size());
    track.Station(east.size(), east.data(), north.data(), height.data(), batch.data(), 2);
    for (std::size_t i = 0; i < batch.size(); ++i) {
        zelfuzz::Require(batch[i].status == single[i].status && batch[i].element == single[i].element);
        zelfuzz::Require(SameBits(batch[i].station, single[i].station) && SameBits(batch[i].offset, single[i].offset));
        zelfuzz::Require(SameBits(batch[i].heightDifference, single[i].heightDifference));
    }
    return 0;
}
