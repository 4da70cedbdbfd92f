# Completion of halyrigctl for PowerShell, to be loaded from $PROFILE. Commands, options and choices are read from the program's own help, so
# there is no list of them here. It also makes halyrigctl, which lies beside this file, known in every folder.
Set-Alias -Name halyrigctl -Value (Join-Path $PSScriptRoot 'halyrigctl.exe')

Register-ArgumentCompleter -Native -CommandName 'halyrigctl', 'halyrigctl.exe' -ScriptBlock {
    param($typed, $line)

    # What a command's help lists. Value is what the help shows behind the name; that of a flag is empty.
    function Read-Help([string[]] $path) {
        $section = ''
        foreach ($row in (& $program @path --help 2>$null)) {
            if ($row -match '^\S.*:$') {
                $section = $row
            } elseif ($row -match '^  (\S+)(?: (\S.*?))?(?:  .*)?$') {
                $names = $Matches[1]
                $value = ("$($Matches[2])" -replace '(Excludes|Needs):.*', '').Trim()
                if ($names.StartsWith('-')) {
                    foreach ($name in $names.Split(',')) { [pscustomobject]@{ Kind = 'option'; Name = $name; Value = $value } }
                } elseif ($section -eq 'Subcommands:') {
                    [pscustomobject]@{ Kind = 'command'; Name = $names; Value = '' }
                } elseif ($section -eq 'Positionals:') {
                    [pscustomobject]@{ Kind = 'positional'; Name = $names; Value = $value }
                }
            }
        }
    }

    # What may stand for a value of the help.
    function Get-Values($entry) {
        if ($entry.Value -match '\{([^}]*)\}') {
            $Matches[1].Split(',') -replace '->.*', ''
        } elseif ('ID', 'CHANNEL' -contains $entry.Name -or $entry.Value -like 'CHANNEL*') {
            & $program channels --tsv 2>$null | ConvertFrom-Csv -Delimiter "`t" |
                ForEach-Object { if ($_.name) { $_.name } else { $_.longName } }
        }
    }

    $program = $line.GetCommandName()
    $words = @($line.CommandElements | Select-Object -Skip 1 | ForEach-Object { $_.Extent.Text })
    if ($typed -and $words.Count) { $words = @($words | Select-Object -SkipLast 1) }

    $path = @()
    $help = @(Read-Help $path)
    $place = 0       # of the positional that is to come
    $awaited = $null # the option whose value is to come
    foreach ($word in $words) {
        if ($awaited) {
            $awaited = $null
        } elseif ($word.StartsWith('-')) {
            $awaited = $help | Where-Object { $_.Name -ceq $word -and $_.Value } | Select-Object -First 1
        } elseif ($help | Where-Object { $_.Kind -eq 'command' -and $_.Name -ceq $word }) {
            $path += $word
            $help = @(Read-Help $path)
        } else {
            ++$place
        }
    }
    $positionals = @($help | Where-Object { $_.Kind -eq 'positional' })
    if ($place -ge $positionals.Count -and $positionals.Count -and $positionals[-1].Value -match '\.\.\.') { $place = $positionals.Count - 1 }

    if ($awaited) {
        $offers = Get-Values $awaited
    } elseif ($typed.StartsWith('-')) {
        $offers = ($help | Where-Object { $_.Kind -eq 'option' }).Name
    } elseif ($help | Where-Object { $_.Kind -eq 'command' }) {
        $offers = ($help | Where-Object { $_.Kind -eq 'command' }).Name
    } elseif ($place -lt $positionals.Count) {
        $offers = Get-Values $positionals[$place]
    } else {
        $offers = ($help | Where-Object { $_.Kind -eq 'option' }).Name
    }
    $bare = $typed.Trim("'", '"')
    $offers | Where-Object { $_ -and $_.StartsWith($bare, [StringComparison]::OrdinalIgnoreCase) } | ForEach-Object {
        if ($_ -match '^[\w%+-]+$') { $_ } else { "'" + $_.Replace("'", "''") + "'" }
    }
}
