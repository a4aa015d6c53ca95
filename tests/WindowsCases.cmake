# What is not tested on Windows: test programs, source files, and cases of a test program.

# They fork, kill, mount, or limit what a process may do.
set(QELTA_LEFT_OUT_PROGRAMS file_kill_test)
set(QELTA_LEFT_OUT_SOURCES file/damage/SizesTest.cpp)
set(QELTA_LEFT_OUT_file_system_test
    DatabaseLockTest.AForkDoesNotReleaseIt
    SystemFilesTest.AForkedChildClosesAndReleasesNothing
    SystemFilesTest.FilesKeepAwayFromTheStandardStreams)
set(QELTA_LEFT_OUT_file_damage_test
    Damaged.LogsFailOrCostTheLastSave
    IdleReaders.HoldWhatTheySeeAndNothingElse
    Misuse.NothingIsMadeAfterAFailedSyncOrInAFork
    Places.AreOutOfReachOfAFork
    Places.MayBeReadOnly
    Readers.SeeOneSaveEach)

# They replace the program's operator new, which is not that of its DLLs.
list(APPEND QELTA_LEFT_OUT_PROGRAMS idmaps_memory_test)
set(QELTA_LEFT_OUT_utilities_test
    BacktraceTest.NoMemory* *.WithoutMemory* StringsPool*Allocation* *.FailingAllocation*)
set(QELTA_LEFT_OUT_idmaps_test *FailingAllocation*)
set(QELTA_LEFT_OUT_descriptor_test *WithoutMemory* *FoundNoMemory)
set(QELTA_LEFT_OUT_block_test BlockSetMemoryTest.* RecordCounter.*)
set(QELTA_LEFT_OUT_ids_test *FailingAllocation* *ShortMemory*)
set(QELTA_LEFT_OUT_entry_points_test
    *WithoutMemory* *IsOneAllocation EntryPointAllocations.* CompanionAllocations.*)

# Its C library writes characters that are none.
list(APPEND QELTA_LEFT_OUT_utilities_test FormatTest.RejectedArgumentsLeaveTheFormat)

# It unpacks its files by a shell.
set(QELTA_LEFT_OUT_io_test FrdReferences.*)

# What they try is the same everywhere, and takes long under wine.
set(QELTA_LEFT_OUT_file_fault_test FaultSweep.AllocationsOfTheCatalogueFail)
set(QELTA_LEFT_OUT_file_catalogue_test CatalogueTest.EveryFlippedByte*)
list(APPEND QELTA_LEFT_OUT_io_test Frd/FrdDamageOfFiles.FlippedBytesNeverCrash/*)
