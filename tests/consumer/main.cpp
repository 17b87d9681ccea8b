// Classifies one transition and reads a value type: checks that the installed
// headers and libraries are complete.
#include <zellib/zellib.h>
#include <zelmath/zelmath.h>

#include <cstdio>

int main()
{
    zelmath::CAxisComplexSpec element;
    element.Start.Radius = 0.0;
    element.End.Radius = 500.0;
    zelmath::CMathComplexShape::GetComplextype(&element);

    zellib::CACoordinate const v(3.0, 4.0);
    bool const ok = element.ComplexType == 0 && v.Length() == 5.0;
    std::printf("consumer: %s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
