// A plug-in of a former time: it offers the factory of another version of the contract.
extern "C" [[gnu::visibility("default")]] void PlgInOmbrey_CreerPlugIn_1() {}
