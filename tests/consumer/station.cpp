// Stations a points file against a LandXML alignment through an installed
// zelalign, and prints id,station,offset_right,status with four decimals, so
// that the result can be compared with the table of `zel station`.
#include <zelalign/zelalign.h>

#include <charconv>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

std::string Fixed4(double v)
{
    char buf[64];
    auto const r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, 4);
    std::string s(buf, static_cast<std::size_t>(r.ptr - buf));
    if (s == "-0.0000") {
        s.erase(0, 1);
    }
    return s;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: consumer_station ALIGNMENT.xml POINTS.csv\n");
        return 2;
    }
    try {
        zelalign::Alignment const a = zelalign::ReadLandXml(argv[1]);
        std::ifstream in(argv[2], std::ios::binary);
        zelalign::PointsCsvReader reader(in, argv[2]);
        std::vector<zelalign::MeasuredPoint> points;
        zelalign::MeasuredPoint p;
        while (reader.Next(&p) == zelalign::PointsCsvReader::Row::Point) {
            points.push_back(p);
        }
        std::vector<double> east, north, height;
        for (auto const& q : points) {
            east.push_back(q.east);
            north.push_back(q.north);
            height.push_back(q.height);
        }
        std::vector<zelalign::StationedPoint> out(points.size());
        a.Station(points.size(), east.data(), north.data(), height.data(), out.data(), zelalign::HardwareThreads());
        std::printf("id,station,offset_right,status\n");
        for (std::size_t i = 0; i < points.size(); ++i) {
            std::printf("%s,%s,%s,%s\n", points[i].id.c_str(), Fixed4(out[i].station).c_str(),
                        Fixed4(out[i].offset).c_str(), zelalign::ProjectionStatusName(out[i].status));
        }
        std::fprintf(stderr, "consumer_station: zelalign %s, %zu points\n", zelalign::Version(), points.size());
    } catch (zelalign::Error const& e) {
        std::fprintf(stderr, "consumer_station: %s\n", e.what());
        return 1;
    }
    return 0;
}
