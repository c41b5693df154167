" The nearest folder, from that of the file upwards, that holds the name; '' when none does.
function! kiln#folderWith(file, name) abort
  let folder = fnamemodify(a:file, ':p:h')
  while 1
    if filereadable(folder . '/' . a:name) || isdirectory(folder . '/' . a:name)
      return folder
    endif
    let above = fnamemodify(folder, ':h')
    if above ==# folder
      return ''
    endif
    let folder = above
  endwhile
endfunction

" Whether the file in the buffer is a source of kiln-as, when its ending does not tell.
function! kiln#isSource(file) abort
  if get(g:, 'kiln_asm') || match(getline(1, 20), '^\s*;.*kiln-as') >= 0
    return 1
  elseif kiln#folderWith(a:file, '.kiln') ==# '' || a:file =~? '\.s$'
    return 0
  endif
  " Many languages use .inc; Vim has looked at the text before. When that tells nothing, it guesses pov.
  return a:file =~? '\.asm$' || index(['', 'pov', 'conf'], &filetype) >= 0 || &filetype =~? 'asm'
endfunction

" Tells vim-lsp how to start the language server.
function! kiln#registerServer() abort
  call lsp#register_server({
        \ 'name': 'kiln-lsp',
        \ 'cmd': {_ -> ['kiln-lsp']},
        \ 'allowlist': ['kiln', 'kilnproject'],
        \ 'root_uri': {_ -> lsp#utils#path_to_uri(kiln#root(expand('%:p')))},
        \ 'initialization_options': {'inlayHints': get(g:, 'kiln_inlay_hints', 1) ? v:true : v:false},
        \ })
endfunction

" The folder of the project that the file belongs to: by a .kiln, by a repository, or the file's own.
function! kiln#root(file) abort
  for name in ['.kiln', '.git']
    let folder = kiln#folderWith(a:file, name)
    if folder !=# ''
      return folder
    endif
  endfor
  return fnamemodify(a:file, ':p:h')
endfunction
