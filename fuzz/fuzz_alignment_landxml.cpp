// Fuzzes the LandXML reader of the alignment layer with arbitrary text. A
// malformed or inconsistent file must end in the reader's own error; anything
// else that escapes (another exception, a crash, a sanitizer report) is a bug.
#include <zelalign/readers/landxml.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    try {
        zelalign::Alignment const a = zelalign::ParseLandXml(text, "fuzz.xml");
        (void)a;
    } catch (zelalign::LandXmlError const&) {
        // the documented refusal of a bad file
    }
    return 0;
}
