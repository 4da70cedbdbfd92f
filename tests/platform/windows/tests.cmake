list(APPEND sources windows/xml_encoding_test.cc)
