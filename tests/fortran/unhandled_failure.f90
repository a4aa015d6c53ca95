! A failure without a status ends the program; unhandled_failure.sh looks at how.
program unhandled_failure
  use qelta
  implicit none
  type(qelta_database) :: db
  character(200) :: message
  call db%open('memory', 'results')
  message = 'not touched'
  call db%delete_block(qelta_descriptor(iteration=1), message=message)
  print '(a)', 'still here: '//trim(message)
  call db%open('papyrus', 'results', message=message)
  print '(a)', 'never here'
end program
