list(APPEND sources
    linux/console_test.cc
    linux/headless_desktop_test.cc
    linux/plain_files_test.cc
    linux/registry_file_test.cc
    linux/registry_text_test.cc
    linux/shared_memory_object_test.cc
    linux/terminal_host_test.cc
    linux/terminal_text_test.cc
    linux/user_roots_test.cc
    linux/zone_test.cc)
