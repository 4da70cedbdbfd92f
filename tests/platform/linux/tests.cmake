list(APPEND sources
    linux/durability_test.cc
    linux/plain_files_test.cc
    linux/registry_file_test.cc
    linux/services_test.cc
    linux/shared_memory_object_test.cc
    linux/terminal_host_test.cc)
