// Classifies a few transition elements of a railway alignment by the radii at
// their ends and prints the kind of each.
#include <zelmath/zelmath.h>

#include <cstdio>

int main()
{
    using zelmath::CAxisComplexSpec;
    using zelmath::CMathComplexShape;

    struct Sample {
        char const* name;
        double startRadius;
        double endRadius;
    };
    Sample const samples[] = {
        {"straight into right-hand curve R 800", 0.0, 800.0},
        {"left-hand curve R 650 into straight", -650.0, 0.0},
        {"curve R 1200 into tighter curve R 600", 1200.0, 600.0},
        {"curve R 450 into wider curve R 900", 450.0, 900.0},
        {"reverse curve R 300 into R -600", 300.0, -600.0},
    };
    char const* const kinds[] = {"straight into curve", "curve into straight",
                                 "radius shrinks (origin before start)",
                                 "radius grows (origin beyond end)"};

    std::printf("%-40s %10s %10s  %s\n", "element", "R start", "R end", "kind");
    for (Sample const& s : samples) {
        CAxisComplexSpec element;
        element.Start.Radius = s.startRadius;
        element.End.Radius = s.endRadius;
        CMathComplexShape::GetComplextype(&element);
        std::printf("%-40s %10.1f %10.1f  %d %s\n", s.name, s.startRadius, s.endRadius,
                    element.ComplexType, kinds[element.ComplexType]);
    }
    return 0;
}
