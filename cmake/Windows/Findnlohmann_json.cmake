include(HeaderPackage)
ostrel_header_package(nlohmann_json::nlohmann_json nlohmann)
set(nlohmann_json_FOUND TRUE)
